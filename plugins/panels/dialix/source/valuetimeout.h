#pragma once

#include <QBasicTimer>
#include <QObject>
#include <QVariant>

// Coalesces a fast stream of values into at most one emission per interval.
//
// The latest value set within an interval wins; a value equal to the pending
// one is dropped. After each emission the pending value goes back to 0, so the
// next non-zero value is emitted on a later tick while a repeated 0 is not.
// The timer runs for the object's whole life; a tick without a new value emits
// nothing.
class ValueTimeout : public QObject
{
    Q_OBJECT

public:
    static constexpr uint MinimumTimeout = 10;
    static constexpr uint MaximumTimeout = 1000;

    explicit ValueTimeout(QObject *parent = nullptr);
    ~ValueTimeout() override;

    uint interval() const { return timeout; }
    QVariant pendingValue() const { return value; }
    bool isPending() const { return changed; }

signals:
    void valueChanged(QVariant value);

public slots:
    void setValue(QVariant val);
    void setTimeout(uint val);

protected:
    void timerEvent(QTimerEvent *event) override;

private:
    bool changed = false;
    uint timeout = MinimumTimeout;
    QVariant value = QVariant(0);
    QBasicTimer timer;
};
