#pragma once

// qrvCommand, the command codec between the host and its plug-ins.

#include "command/commandtable.h"
#include "interfaces/cwkeycontrolabstract.h"

#include <QList>
#include <QObject>
#include <QVariant>

#include <memory>

// The command codec between the generic message channel and typed calls.
//
// Sending: every encoder slot packs its arguments into a message (a
// QVariantList led by the command id) and emits sCommand() with it.
// Receiving: setCommand() takes one message and emits the typed signal of its
// id. Both halves are generated from QRV_COMMANDS in commandtable.h; the slot
// and signal lists below are that table's expansion.
//
// The codec keeps no state between calls apart from the last CW-key object
// announced by a received message, and one spare message per length that an
// encoder fills anew once nobody holds it any more (see send()). Signals are
// emitted synchronously in the calling thread.
class qrvCommand : public QObject
{
    Q_OBJECT

public:
    explicit qrvCommand(QObject *parent = nullptr);
    ~qrvCommand() override;

    // The CW-key object of the last received CW-key announcement that changed
    // it, or null. Borrowed from the host.
    CwKeyControlAbstract *lastCwKeyObject() const { return cwKeyObject; }

signals:
    void sCommand(QVariant cmd);
    QRV_COMMANDS(QRV_DECLARE_C_SIGNAL, QRV_NOTHING, QRV_DECLARE_S_SIGNAL, QRV_DECLARE_F_SIGNAL,
                 QRV_DECLARE_O_SIGNAL)

public slots:
    QRV_COMMANDS(QRV_DECLARE_C_SLOT, QRV_DECLARE_E_SLOT, QRV_NOTHING, QRV_DECLARE_F_SLOT,
                 QRV_DECLARE_O_SLOT)

    // Decodes one message and emits its signal. Anything that is not a
    // message of a known id is dropped without a trace. (Taken by reference:
    // the meta-method is the same "setCommand(QVariant)", and a call copies
    // only the list, not the variant around it.)
    void setCommand(const QVariant &cmd);

private:
    friend struct QrvDispatch;

    template<typename... Elements>
    void send(Elements &&...elements);

    // The longest message: the id and four arguments.
    static constexpr int MaxMessageLength = 5;

    CwKeyControlAbstract *cwKeyObject = nullptr;

    // Reserved: part of the object's layout, never read or written by the codec.
    [[maybe_unused]] bool reservedFlagA = false;
    [[maybe_unused]] bool reservedFlagB = false;
    std::unique_ptr<quint8[]> reservedBytes;
    std::unique_ptr<quint32[]> reservedWords;
    std::unique_ptr<quint64[]> reservedLongs;

    // The last message sent of each length (index: length - 1), used on the
    // object's own thread only.
    QVariant spareMessages[MaxMessageLength];
};
