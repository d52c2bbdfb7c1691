#pragma once

// Widgets of the virtual panel's picture: LED lamps and push-dials.

#include <QColor>
#include <QWidget>

// One LED of the panel picture: a round lamp with a caption.
class LedLamp : public QWidget
{
    Q_OBJECT

public:
    explicit LedLamp(const QString &caption, const QColor &color, QWidget *parent = nullptr);

    bool isOn() const { return on; }
    void setOn(bool state);
    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    QString caption;
    QColor color;
    bool on = false;
};

// A push-dial of the panel picture. The mouse wheel turns it one step per
// notch; dragging up or down turns it one step per few pixels; a click without
// dragging pushes it for a moment. turnBy() and setPushed() do the same for the
// keyboard. While pushed it looks pressed in.
class DialKnob : public QWidget
{
    Q_OBJECT

public:
    explicit DialKnob(const QString &caption, int diameter, QWidget *parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override { return sizeHint(); }
    bool isPushed() const { return down; }

public slots:
    void turnBy(int steps);
    // pressed() when it goes down, released() when it comes up; nothing when
    // it already is where it is told to go.
    void setPushed(bool pushed);

signals:
    void turned(int steps);
    void pressed();
    void released();

protected:
    void paintEvent(QPaintEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;

private:
    static constexpr int PixelsPerStep = 6;
    // How long a click holds the dial pushed.
    static constexpr int ClickMs = 150;

    QString caption;
    int diameter;
    int angle = 0; // steps turned, for the marker
    int wheelRemainder = 0; // eighths of a degree not yet turned
    int dragOrigin = 0;
    bool dragging = false;
    bool down = false;
};
