#include "look/house_style.h"

#include <QFile>

// Q_INIT_RESOURCE may not stand inside a namespace.
static bool registerPanelResources()
{
    Q_INIT_RESOURCE(panel);
    return true;
}

namespace {

// The linker takes from a static library only what somebody refers to, and nobody refers to
// the compiled resource tree. This initialiser does, and so the tree is there before main.
[[maybe_unused]] const bool panelResourcesRegistered = registerPanelResources();

} // namespace

QString houseStyleSheet()
{
    QFile sheet(QStringLiteral(":/Images/style.qss"));
    if (!sheet.open(QIODevice::ReadOnly)) {
        return {};
    }
    return QString::fromUtf8(sheet.readAll());
}

// In one size: to convert a larger picture the toolkit begins threads, which the idle program is to
// do without.
QIcon houseIcon()
{
    return QIcon(QStringLiteral(":/Images/Resources/notchbench.png"));
}
