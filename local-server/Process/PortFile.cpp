// SPDX-License-Identifier: GPL-3.0-or-later
#include "Process/PortFile.h"

#include <QFile>
#include <QSaveFile>

namespace orvane::server {

std::optional<std::uint16_t> keptPort(const std::string &path)
{
    QFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    bool isNumber = false;
    const ushort port = file.read(16).trimmed().toUShort(&isNumber);
    return isNumber && port != 0 ? std::optional{port} : std::nullopt;
}

std::string keepPort(const std::string &path, std::uint16_t port)
{
    QSaveFile file(QString::fromStdString(path));
    if (!file.open(QIODevice::WriteOnly))
        return file.errorString().toStdString();
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    file.write(QByteArray::number(port) + "\n");
    return file.commit() ? "" : file.errorString().toStdString();
}

} // namespace orvane::server
