#pragma once

#include "MouseStatus.h"

#include <QtCore/QByteArray>
#include <QtCore/QCoreApplication>
#include <QtCore/QRectF>
#include <QtGui/QFont>
#include <QtGui/QPalette>
#include <QtSvg/QSvgRenderer>

class QPainter;

/// The mouse as a drawing, in the colours of a palette. What a colour shows is also shown by a text or a hatching.
class MousePicture
{
    Q_DECLARE_TR_FUNCTIONS(MousePicture)

public:
    /// What is drawn: the mouse's own status, and what the window knows of the fingers and the host.
    struct Content
    {
        MouseStatus mouse;
        /// By the words that "press" takes: 1 to 5, dpi, smart.
        QSet<QString> pressed;
        bool isCtrlPressed = false;
    };

    MousePicture();

    void setContent(const Content &content, const QPalette &palette);
    void paint(QPainter &painter, const QRectF &area) const;
    /// Where this button is, by the word that "press" takes.
    QRectF buttonArea(const QString &button, const QRectF &area) const;
    /// Of the whole drawing, in its own units, which are pixels at its natural size.
    QSizeF size() const { return m_renderer.viewBoxF().size(); }

private:
    // Writes at places of the drawing, in its units.
    struct Writer
    {
        void write(const QRectF &place, int flags, const QString &text, bool isBold,
                   QPalette::ColorRole role) const;

        QPainter &painter;
        const QPalette &palette;
        const QFont font;
        QPointF origin;
        double scale = 1;
    };

    QRectF fitted(const QRectF &area) const;
    void writeButtons(const Writer &writer) const;
    void writeCtrl(const Writer &writer) const;
    void writeStatus(const Writer &writer) const;

    const QByteArray m_template;
    mutable QSvgRenderer m_renderer;  // its render() is not const
    Content m_content;
    QPalette m_palette;
};
