#include "status/request_log.h"

#include <QDebug>

#include <chrono>

namespace {

constexpr int mostInASecond = 65536; // bytes
constexpr int roundARequest = 7;     // bytes of a line that aren't the request's

} // namespace

RequestLog::RequestLog()
{
    second.setSingleShot(true);
    second.setInterval(std::chrono::seconds(1));
    QObject::connect(&second, &QTimer::timeout, &second, [this] { tellRest(); });
}

RequestLog::~RequestLog()
{
    tellRest();
}

void RequestLog::note(const QString& request)
{
    if (!second.isActive()) {
        second.start();
        left = mostInASecond;
    }
    left -= request.size() + roundARequest;
    if (left < 0) {
        ++more;
        return;
    }
    qDebug() << "<< " << request;
}

void RequestLog::tellRest()
{
    if (more > 0) {
        qDebug() << "<< " << more << "more requests within a second";
        more = 0;
    }
}
