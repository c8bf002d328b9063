#pragma once

#include "SequenceDiagram.h"

#include <QtSvg/QSvgRenderer>
#include <QtWidgets/QScrollArea>

#include <memory>
#include <vector>

/// Shows a sequence diagram in any size, with the names of the lifelines always in sight: Ctrl and the wheel, and the
/// keys + and -, zoom; the place under the pointer stays.
class SequenceView : public QScrollArea
{
    Q_OBJECT

public:
    explicit SequenceView(QWidget *parent = nullptr);

    void setPicture(const QList<SequenceBand> &bands);
    /// 1 is the picture's own size.
    double zoom() const { return m_zoom; }

public Q_SLOTS:
    void zoomIn();
    void zoomOut();
    void resetZoom();
    /// As wide as the view, at most in its own size.
    void fitWidth();

Q_SIGNALS:
    /// The pointer rests at this height of the picture, in its own size, and at this place on the screen.
    void toolTipWanted(int y, const QPoint &place);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void scrollContentsBy(int dx, int dy) override;
    void wheelEvent(QWheelEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void setZoom(double zoom);
    void setZoomAround(double zoom, const QPointF &place);
    void placeHeads();
    void paintPicture(const QRect &exposed);
    void paintHeads();

    /// A band, and what draws it: made when the band comes into sight.
    struct Part
    {
        SequenceBand band;
        std::unique_ptr<QSvgRenderer> renderer;
    };
    static QSvgRenderer &rendererOf(Part &part);

    std::vector<Part> m_parts;
    QSize m_size;
    QRectF m_headsPlace;         // in the picture
    QWidget *m_heads = nullptr;  // over the picture
    double m_zoom = 1;
};
