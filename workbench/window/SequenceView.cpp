#include "SequenceView.h"

#include <QtGui/QHelpEvent>
#include <QtGui/QKeyEvent>
#include <QtGui/QPainter>
#include <QtGui/QPaintEvent>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QScrollBar>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace {

constexpr double zoomStep = 1.2;
constexpr double smallestZoom = 0.1;
constexpr double largestZoom = 5;
constexpr double headsMargin = 4;
constexpr double degreesPerStep = 120;  // of a wheel, in eighths of a degree

}  // namespace

SequenceView::SequenceView(QWidget *parent) : QScrollArea(parent), m_heads(new QWidget(this))
{
    auto *picture = new QWidget;
    picture->setObjectName(u"sequencePicture"_s);
    picture->setAccessibleName(tr("Sequence diagram"));
    picture->installEventFilter(this);
    setWidget(picture);
    m_heads->setObjectName(u"sequenceHeads"_s);
    m_heads->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_heads->setAutoFillBackground(true);
    m_heads->setBackgroundRole(QPalette::Base);
    m_heads->installEventFilter(this);
    setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    setBackgroundRole(QPalette::Base);
    setFocusPolicy(Qt::StrongFocus);
}

void SequenceView::setPicture(const QList<SequenceBand> &bands)
{
    m_parts.clear();
    for (const SequenceBand &band : bands)
        m_parts.push_back({band, nullptr});
    m_size = bands.isEmpty() ? QSize() : QSize(bands.last().place.width(), bands.last().place.bottom() + 1);
    m_headsPlace =
        bands.isEmpty() ? QRectF() : rendererOf(m_parts.front()).boundsOnElement(SequenceDiagram::headsId);
    setZoom(m_zoom);
    widget()->update();
}

QSvgRenderer &SequenceView::rendererOf(Part &part)
{
    if (!part.renderer)
        part.renderer = std::make_unique<QSvgRenderer>(part.band.svg);
    return *part.renderer;
}

void SequenceView::zoomIn()
{
    setZoomAround(m_zoom * zoomStep, viewport()->rect().center());
}

void SequenceView::zoomOut()
{
    setZoomAround(m_zoom / zoomStep, viewport()->rect().center());
}

void SequenceView::resetZoom()
{
    setZoomAround(1, viewport()->rect().center());
}

void SequenceView::fitWidth()
{
    const int scrollBar = verticalScrollBar()->sizeHint().width();
    const int width = maximumViewportSize().width() - scrollBar;
    setZoom(std::min(1.0, static_cast<double>(width) / std::max(1, m_size.width())));
}

void SequenceView::setZoom(double zoom)
{
    m_zoom = std::clamp(zoom, smallestZoom, largestZoom);
    widget()->resize(m_size * m_zoom);
    placeHeads();
}

void SequenceView::placeHeads()
{
    m_heads->setGeometry(viewport()->x(), viewport()->y(), viewport()->width(),
                         static_cast<int>(std::ceil((m_headsPlace.height() + headsMargin) * m_zoom)));
    m_heads->setVisible(!m_headsPlace.isEmpty() && -widget()->y() > m_headsPlace.top() * m_zoom);
    m_heads->update();
}

void SequenceView::setZoomAround(double zoom, const QPointF &place)
{
    const QPointF before = (place - widget()->pos()) / m_zoom;
    setZoom(zoom);
    const QPointF scrolled = before * m_zoom - place;
    horizontalScrollBar()->setValue(static_cast<int>(std::lround(scrolled.x())));
    verticalScrollBar()->setValue(static_cast<int>(std::lround(scrolled.y())));
}

bool SequenceView::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Paint && (object == widget() || object == m_heads)) {
        if (object == m_heads)
            paintHeads();
        else
            paintPicture(static_cast<QPaintEvent *>(event)->rect());
        return true;
    }
    if (event->type() == QEvent::ToolTip && object == widget()) {
        const auto *help = static_cast<QHelpEvent *>(event);
        Q_EMIT toolTipWanted(static_cast<int>(help->pos().y() / m_zoom), help->globalPos());
        return true;
    }
    return QScrollArea::eventFilter(object, event);
}

void SequenceView::paintPicture(const QRect &exposed)
{
    QPainter painter(widget());
    for (Part &part : m_parts) {
        const QRectF place(QPointF(part.band.place.topLeft()) * m_zoom,
                           QSizeF(part.band.place.size()) * m_zoom);
        if (!place.intersects(exposed))
            continue;
        painter.setClipRect(place);
        rendererOf(part).render(&painter, place);
    }
}

void SequenceView::paintHeads()
{
    if (m_parts.empty())
        return;
    QPainter painter(m_heads);
    rendererOf(m_parts.front())
        .render(&painter, SequenceDiagram::headsId,
                QRectF(widget()->x() + m_headsPlace.left() * m_zoom, headsMargin * m_zoom / 2,
                       m_headsPlace.width() * m_zoom, m_headsPlace.height() * m_zoom));
}

void SequenceView::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    placeHeads();
}

void SequenceView::scrollContentsBy(int dx, int dy)
{
    QScrollArea::scrollContentsBy(dx, dy);
    placeHeads();
}

void SequenceView::wheelEvent(QWheelEvent *event)
{
    if (!event->modifiers().testFlag(Qt::ControlModifier)) {
        QScrollArea::wheelEvent(event);
        return;
    }
    setZoomAround(m_zoom * std::pow(zoomStep, event->angleDelta().y() / degreesPerStep), event->position());
    event->accept();
}

void SequenceView::keyPressEvent(QKeyEvent *event)
{
    switch (event->key()) {
    case Qt::Key_Plus:
    case Qt::Key_Equal:  // the same key without Shift
        zoomIn();
        return;
    case Qt::Key_Minus:
        zoomOut();
        return;
    case Qt::Key_0:
        resetZoom();
        return;
    default:
        QScrollArea::keyPressEvent(event);
    }
}
