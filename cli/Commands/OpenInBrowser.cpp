// SPDX-License-Identifier: GPL-3.0-or-later
#include "Commands/OpenInBrowser.h"

#include <QProcess>

namespace orvane {

bool openInBrowser(const std::string &address)
{
#ifdef __APPLE__
    const QString opener = QStringLiteral("open");
#else
    if (qEnvironmentVariableIsEmpty("DISPLAY") && qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY"))
        return false;
    const QString opener = QStringLiteral("xdg-open");
#endif
    QProcess process;
    process.setProgram(opener);
    process.setArguments({QString::fromStdString(address)});
    process.setStandardInputFile(QProcess::nullDevice());
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    return process.startDetached();
}

} // namespace orvane
