#include "MousePicture.h"

#include "MixedColor.h"

#include <QtCore/QFile>
#include <QtGui/QPainter>

using namespace Qt::StringLiterals;

// The resource belongs to a static library; out of any namespace, as the macro needs it.
static void registerResource()
{
    Q_INIT_RESOURCE(window);
}

namespace {

constexpr int slotCount = 5;
constexpr int buttonCount = 5;

QByteArray readTemplate()
{
    registerResource();
    QFile file(u":/window/mouse.svg"_s);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QString elementOf(const QString &button)
{
    return u"button"_s + button.at(0).toUpper() + button.sliced(1);
}

bool isHeld(const MousePicture::Content &content, const QString &button)
{
    const int number = button == "smart"_L1 ? MouseStatus::smartPointerKey : button.toInt();
    return content.pressed.contains(button) || content.mouse.heldButtons.contains(number);
}

}  // namespace

MousePicture::MousePicture() : m_template(readTemplate())
{
    setContent({}, {});
}

void MousePicture::setContent(const Content &content, const QPalette &palette)
{
    m_content = content;
    m_palette = palette;
    // Windows shows the highlight of an inactive window so faintly that no slot would look active.
    if (m_palette.currentColorGroup() == QPalette::Inactive)
        m_palette.setCurrentColorGroup(QPalette::Active);
    const QColor line = m_palette.color(QPalette::WindowText);
    const QColor body = mixed(m_palette.color(QPalette::Window), line, content.mouse.isAsleep ? 0.25 : 0.05);
    const QColor key = m_palette.color(QPalette::Base);
    const QColor held = m_palette.color(QPalette::Highlight);
    QByteArray svg = m_template;
    const auto put = [&svg](const QString &name, const QString &value) {
        svg.replace('{' + name.toLatin1() + '}', value.toLatin1());
    };
    put(u"line"_s, line.name());
    put(u"body"_s, body.name());
    put(u"ctrl"_s, (content.isCtrlPressed ? held : key).name());
    const auto putButton = [&](const QString &button) {
        put(elementOf(button), (isHeld(content, button) ? held : key).name());
    };
    for (int number = 1; number <= buttonCount; ++number) {
        putButton(QString::number(number));
        put(u"hatch%1"_s.arg(number), content.mouse.divertedButtons.contains(number) ? u"1"_s : u"0"_s);
    }
    putButton(u"dpi"_s);
    putButton(u"smart"_s);
    for (int slot = 1; slot <= slotCount; ++slot)
        put(u"slot%1"_s.arg(slot), (slot == content.mouse.activeSlot ? held : body).name());
    m_renderer.load(svg);
}

void MousePicture::paint(QPainter &painter, const QRectF &area) const
{
    const QRectF target = fitted(area);
    const double scale = target.width() / size().width();
    m_renderer.render(&painter, target);
    const Writer writer{painter, m_palette, painter.font(),
                        target.topLeft() - m_renderer.viewBoxF().topLeft() * scale, scale};
    writeButtons(writer);
    writeCtrl(writer);
    if (m_content.mouse.hasMouse)
        writeStatus(writer);
}

// What is held is bold, so that it differs by more than its colour.
void MousePicture::Writer::write(const QRectF &place, int flags, const QString &text, bool isBold,
                                 QPalette::ColorRole role) const
{
    QFont ownFont = font;
    ownFont.setBold(isBold);
    painter.setFont(ownFont);
    painter.setPen(palette.color(role));
    painter.drawText(QRectF(origin + place.topLeft() * scale, place.size() * scale),
                     flags | Qt::TextDontClip | Qt::TextWordWrap, text);
}

void MousePicture::writeButtons(const Writer &writer) const
{
    const auto write = [&](const QString &button, const QString &name, const QRectF &place, int flags,
                           QPalette::ColorRole heldRole) {
        const bool isNowHeld = isHeld(m_content, button);
        QString text = name;
        if (m_content.mouse.divertedButtons.contains(button.toInt()))
            text = tr("%1 to host").arg(text);
        if (isNowHeld)
            text += u' ' + tr("held");
        writer.write(place, flags, text, isNowHeld, isNowHeld ? heldRole : QPalette::WindowText);
    };
    constexpr int right = Qt::AlignLeft | Qt::AlignVCenter;
    constexpr int left = Qt::AlignRight | Qt::AlignVCenter;
    constexpr auto onKey = QPalette::HighlightedText;
    constexpr auto beside = QPalette::WindowText;
    write(u"1"_s, u"1"_s, {54, 84, 48, 48}, Qt::AlignCenter, onKey);
    write(u"2"_s, u"2"_s, {138, 84, 48, 48}, Qt::AlignCenter, onKey);
    write(u"3"_s, tr("Wheel (3)"), {210, 20, 106, 36}, right, beside);
    write(u"4"_s, u"4"_s, {-76, 184, 104, 38}, left, beside);
    write(u"5"_s, u"5"_s, {-76, 140, 104, 38}, left, beside);
    write(u"dpi"_s, tr("DPI button (D)"), {210, 136, 106, 32}, right, beside);
    write(u"smart"_s, tr("Smart pointer (S)"), {210, 170, 106, 32}, right, beside);
}

void MousePicture::writeCtrl(const Writer &writer) const
{
    const bool isDown = m_content.isCtrlPressed;
    writer.write({210, 240, 104, 18}, Qt::AlignCenter, tr("Host sees"), false, QPalette::WindowText);
    writer.write({226, 262, 72, 44}, Qt::AlignCenter, isDown ? tr("Ctrl down") : tr("Ctrl up"), isDown,
                 isDown ? QPalette::HighlightedText : QPalette::Text);
}

void MousePicture::writeStatus(const Writer &writer) const
{
    const MouseStatus &mouse = m_content.mouse;
    const auto write = [&](double top, const QString &text, bool isBold) {
        writer.write({52, top, 136, 20}, Qt::AlignCenter, text, isBold, QPalette::WindowText);
    };
    write(226, tr("slot %1: %2 DPI").arg(mouse.activeSlot).arg(mouse.dpi), false);
    write(246, mouse.hasBatteryLevel ? tr("battery %1 %").arg(mouse.batteryLevel) : tr("no battery level"),
          false);
    if (mouse.isAsleep)
        write(268, tr("asleep"), true);
}

QRectF MousePicture::buttonArea(const QString &button, const QRectF &area) const
{
    const QRectF bounds = m_renderer.boundsOnElement(elementOf(button));
    const QRectF target = fitted(area);
    const double scale = target.width() / size().width();
    return {target.topLeft() + (bounds.topLeft() - m_renderer.viewBoxF().topLeft()) * scale,
            bounds.size() * scale};
}

QRectF MousePicture::fitted(const QRectF &area) const
{
    QRectF target({}, size().scaled(area.size(), Qt::KeepAspectRatio));
    target.moveCenter(area.center());
    return target;
}
