#include "tools/probe/nodeaccess.h"

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
