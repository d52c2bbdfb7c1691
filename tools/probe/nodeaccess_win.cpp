// Device-node checks on Windows: none beyond hidapi.

#include "tools/probe/nodeaccess.h"

int nodeOpenError(const char *)
{
    // A HID path on Windows is a device interface name that only hidapi opens;
    // its error text ("Access is denied") tells the cases apart.
    return 0;
}

QByteArray readReportDescriptor(const char *)
{
    // hidapi 0.13 has no call for it on Windows.
    return QByteArray();
}
