#pragma once

#include "Entry.h"
#include "SequenceDiagram.h"

#include <QtWidgets/QWidget>

class QLabel;
class QStackedWidget;
class QToolBar;
class SequenceView;

/// Shows timeline entries as a sequence diagram, and exports it.
class SequenceDock : public QWidget
{
    Q_OBJECT

public:
    explicit SequenceDock(QWidget *parent = nullptr);

public Q_SLOTS:
    void showEntries(const QList<Entry> &entries);

protected:
    void changeEvent(QEvent *event) override;

private:
    void addActions(QToolBar *bar);
    void draw();
    void chooseFile();
    void exportTo(const QString &file);
    void copy();
    void say(const QString &message);
    /// y: in the picture; place: on the screen.
    void showToolTip(int y, const QPoint &place);
    /// For others' eyes: always light.
    QByteArray exportedSvg() const { return m_diagram.svg(SequencePalette::light()); }

    SequenceDiagram m_diagram;
    QList<QAction *> m_actions;
    QStackedWidget *m_pages = nullptr;
    SequenceView *m_view = nullptr;
    QLabel *m_message = nullptr;
};
