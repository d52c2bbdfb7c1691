// Key injection on Linux: a uinput virtual keyboard.

#include "keys/senderkeytosystem_linux.h"

#include "interfaces/dialixlogging.h"

#include <QFile>

#include <libevdev/libevdev-uinput.h>
#include <libevdev/libevdev.h>
#include <linux/input.h>

#include <errno.h>
#include <fcntl.h>
#include <string.h>
#include <unistd.h>

// The table's Linux values are the kernel's input key codes.
#define DIALIX_CHECK_LINUX_KEY(qt, winName, winKey, linName, linKey)                               \
    static_assert(linName == linKey, #linName);
DIALIX_SYSTEM_KEYS(DIALIX_CHECK_LINUX_KEY)
#undef DIALIX_CHECK_LINUX_KEY

SenderKeyToSystemLinux::SenderKeyToSystemLinux(const QString &uinputPath, QObject *parent)
    : SenderKeyToSystemPlatform(parent)
    , m_uinputPath(uinputPath)
{ }

SenderKeyToSystemLinux::~SenderKeyToSystemLinux()
{
    if (m_keyboard)
        libevdev_uinput_destroy(m_keyboard);
    if (m_fd >= 0)
        ::close(m_fd);
}

void SenderKeyToSystemLinux::sendKeyUp(const SystemKey &key)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!createKeyboard())
        return;
    libevdev_uinput_write_event(m_keyboard, EV_KEY, key.linuxKey, 0);
    libevdev_uinput_write_event(m_keyboard, EV_SYN, SYN_REPORT, 0);
}

QString SenderKeyToSystemLinux::deviceNode() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    const char *node = m_keyboard ? libevdev_uinput_get_devnode(m_keyboard) : nullptr;
    return node ? QFile::decodeName(node) : QString();
}

int SenderKeyToSystemLinux::uinputDescriptor() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_keyboard ? m_fd : -1;
}

// Tried again for every key until it works (the module may be loaded or the
// access granted later); one debug line when it starts failing, one when it
// works again.
bool SenderKeyToSystemLinux::createKeyboard()
{
    if (m_keyboard)
        return true;

    const QByteArray path = QFile::encodeName(m_uinputPath);
    QString error;
    const int fd = ::open(path.constData(), O_RDWR | O_CLOEXEC);
    if (fd < 0) {
        error = QStringLiteral("cannot open %1: %2")
                    .arg(QString::fromLocal8Bit(path), QString::fromLocal8Bit(strerror(errno)));
    } else {
        libevdev *device = libevdev_new();
        libevdev_set_name(device, "Dialix virtual keyboard");
        libevdev_set_id_bustype(device, BUS_VIRTUAL);
        libevdev_enable_event_type(device, EV_KEY);
        for (unsigned int code = KEY_ESC; code < BTN_MISC; ++code)
            libevdev_enable_event_code(device, EV_KEY, code, nullptr);
        const int rc = libevdev_uinput_create_from_device(device, fd, &m_keyboard);
        libevdev_free(device);
        if (rc < 0) {
            error = QStringLiteral("cannot create a virtual keyboard on %1: %2")
                        .arg(QString::fromLocal8Bit(path), QString::fromLocal8Bit(strerror(-rc)));
            m_keyboard = nullptr;
            ::close(fd);
        } else {
            m_fd = fd;
        }
    }
    if (m_keyboard) {
        if (m_failing)
            qCDebug(dialixLog, "%s: the virtual keyboard on %s works now", Q_FUNC_INFO,
                    path.constData());
        m_failing = false;
        return true;
    }
    if (!m_failing)
        qCDebug(dialixLog, "%s %s", Q_FUNC_INFO, qUtf8Printable(error));
    m_failing = true;
    return false;
}

std::unique_ptr<SenderKeyToSystemPlatform> createSenderKeyToSystemPlatform()
{
    return std::make_unique<SenderKeyToSystemLinux>();
}
