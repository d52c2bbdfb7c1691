// The panel picture's lamps and dials.

#include "panelwidgets.h"

#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWheelEvent>

#include <QtMath>

LedLamp::LedLamp(const QString &caption, const QColor &color, QWidget *parent)
    : QWidget(parent)
    , caption(caption)
    , color(color)
{ }

void LedLamp::setOn(bool state)
{
    if (on == state)
        return;
    on = state;
    update();
}

QSize LedLamp::sizeHint() const
{
    return {qMax(48, fontMetrics().horizontalAdvance(caption) + 8),
            22 + fontMetrics().height() + 4};
}

void LedLamp::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF lamp(width() / 2.0 - 9, 2, 18, 18);
    if (on) {
        QRadialGradient glow(lamp.center(), 14);
        glow.setColorAt(0, color.lighter(150));
        glow.setColorAt(1, color);
        p.setBrush(glow);
    } else {
        p.setBrush(color.darker(400));
    }
    p.setPen(QPen(Qt::black, 1));
    p.drawEllipse(lamp);
    p.setPen(palette().color(QPalette::WindowText));
    p.drawText(QRect(0, 22, width(), height() - 22), Qt::AlignHCenter | Qt::AlignTop, caption);
}

DialKnob::DialKnob(const QString &caption, int diameter, QWidget *parent)
    : QWidget(parent)
    , caption(caption)
    , diameter(diameter)
{
    setCursor(Qt::SizeVerCursor);
    setToolTip(tr("Wheel or drag to turn, click to push"));
}

QSize DialKnob::sizeHint() const
{
    return {diameter + 8, diameter + 8 + fontMetrics().height() + 2};
}

void DialKnob::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QRectF knob((width() - diameter) / 2.0, 4, diameter, diameter);
    if (down) {
        // Pushed in: a lit ring around a smaller, darker knob lit from below.
        p.setPen(QPen(palette().color(QPalette::Highlight), 3));
        p.setBrush(Qt::NoBrush);
        p.drawEllipse(knob.adjusted(-1.5, -1.5, 1.5, 1.5));
        knob.adjust(4, 4, -4, -4);
    }
    const QPointF light =
        down ? QPointF(diameter / 8.0, diameter / 8.0) : QPointF(-diameter / 6.0, -diameter / 6.0);
    QRadialGradient shade(knob.center() + light, diameter);
    shade.setColorAt(0, down ? QColor(95, 95, 95) : QColor(150, 150, 150));
    shade.setColorAt(1, QColor(20, 20, 20));
    p.setBrush(shade);
    p.setPen(QPen(Qt::black, 1.5));
    p.drawEllipse(knob);
    // A marker that follows the turns, 15 degrees per step.
    const qreal a = qDegreesToRadians(qreal(angle * 15 - 90));
    const QPointF c = knob.center();
    const qreal r = knob.width() / 2.0 - 6;
    p.setBrush(down ? QColor(190, 190, 190) : QColor(Qt::white));
    p.setPen(Qt::NoPen);
    p.drawEllipse(QPointF(c.x() + r * qCos(a), c.y() + r * qSin(a)), 3, 3);
    p.setPen(palette().color(QPalette::WindowText));
    p.drawText(QRect(0, diameter + 8, width(), height() - diameter - 8),
               Qt::AlignHCenter | Qt::AlignTop, caption);
}

void DialKnob::turnBy(int steps)
{
    if (steps == 0)
        return;
    angle += steps;
    update();
    emit turned(steps);
}

void DialKnob::setPushed(bool pushed)
{
    if (down == pushed)
        return;
    down = pushed;
    update();
    if (down)
        emit pressed();
    else
        emit released();
}

void DialKnob::wheelEvent(QWheelEvent *event)
{
    // One notch is 120 eighths of a degree; high-resolution wheels send less.
    wheelRemainder += event->angleDelta().y();
    const int steps = wheelRemainder / 120;
    wheelRemainder -= steps * 120;
    turnBy(steps);
    event->accept();
}

void DialKnob::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    dragOrigin = event->pos().y();
    dragging = false;
    event->accept();
}

void DialKnob::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    // Up turns clockwise.
    const int moved = dragOrigin - event->pos().y();
    if (!dragging && qAbs(moved) < PixelsPerStep)
        return;
    dragging = true;
    const int steps = moved / PixelsPerStep;
    dragOrigin -= steps * PixelsPerStep;
    turnBy(steps);
}

void DialKnob::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    // A click pushes for a moment, long enough to be seen. A dial held down
    // from the keyboard stays down.
    if (!dragging && !down) {
        setPushed(true);
        QTimer::singleShot(ClickMs, this, [this] { setPushed(false); });
    }
    dragging = false;
}
