#include "simulator/signal_replies.h"

#include <QtEndian>

namespace {

constexpr int wordSize = 4;

quint32 wordAt(const QByteArray& bytes, int offset)
{
    return qFromLittleEndian<quint32>(bytes.constData() + offset);
}

double floatAt(const QByteArray& bytes, int offset)
{
    return static_cast<double>(qFromLittleEndian<float>(bytes.constData() + offset));
}

bool isTagAt(const QByteArray& reply, int offset, ReplyTag tag)
{
    return wordAt(reply, offset) == static_cast<quint32>(tag);
}

// Where the records end: at the tag of the symbols, or at the end.
int endOfRecords(const QByteArray& reply)
{
    int offset = 0;
    while (offset + recordSize <= reply.size() && !isTagAt(reply, offset, ReplyTag::Symbols)) {
        offset += recordSize;
    }
    return offset;
}

} // namespace

const QByteArray& serverIdentity()
{
    static const QByteArray block =
        QByteArray("\4\0\0\0Noise Power Ratio", 21).leftJustified(100, '\0');
    return block;
}

double recordValue(const QByteArray& reply, ReplyTag tag, double otherwise)
{
    const int end = endOfRecords(reply);
    for (int offset = 0; offset + recordSize <= end; offset += recordSize) {
        if (isTagAt(reply, offset, tag)) {
            return floatAt(reply, offset + wordSize);
        }
    }
    return otherwise;
}

PlayedSignal signalInReply(const QByteArray& reply, double symbolRate)
{
    const int symbols = endOfRecords(reply) + wordSize;
    const int count = (reply.size() - symbols) / recordSize;
    if (count <= 0) {
        return {};
    }
    PlayedSignal signal{QVector<double>(count), QVector<double>(count),
                        recordValue(reply, ReplyTag::SymbolRate, symbolRate)};
    for (int k = 0; k < count; ++k) {
        const int offset = symbols + k * recordSize;
        signal.iSamples[k] = floatAt(reply, offset);
        signal.qSamples[k] = floatAt(reply, offset + wordSize);
    }
    return signal;
}
