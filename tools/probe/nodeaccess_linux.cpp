// Device-node checks on Linux: hidraw nodes and their sysfs attributes.

#include "tools/probe/nodeaccess.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

int nodeOpenError(const char *path)
{
    if (!path || !*path)
        return ENOENT;
    const int fd = ::open(path, O_RDWR | O_CLOEXEC);
    if (fd < 0)
        return errno;
    ::close(fd);
    return 0;
}

QByteArray readReportDescriptor(const char *path)
{
    // /dev/hidrawN -> /sys/class/hidraw/hidrawN/device/report_descriptor
    const QString node = QFileInfo(QFile::decodeName(path)).fileName();
    QFile file(QStringLiteral("/sys/class/hidraw/%1/device/report_descriptor").arg(node));
    if (node.isEmpty() || !file.open(QIODevice::ReadOnly))
        return QByteArray();
    return file.readAll();
}
