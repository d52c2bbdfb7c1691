#pragma once

// HID device-node checks that dialix-probe makes beside hidapi.

#include <QByteArray>

// Tries to open a HID device node for reading and writing, the way hidapi does,
// closes it again at once, and returns the errno of the failure, or 0 when the
// node could be opened or the platform has no such check (Windows, where
// hidapi's error text is all there is).
int nodeOpenError(const char *path);

// The report descriptor of the HID device at `path`, read where the system
// offers it without opening the device (Linux: the hidraw node's sysfs
// attribute, readable by every user); null where it cannot be read.
QByteArray readReportDescriptor(const char *path);
