#pragma once

#include <QtWidgets/QDialog>

/// Shows a text to read, beside the window; ends itself when it is closed.
class TextWindow : public QDialog
{
    Q_OBJECT

public:
    TextWindow(const QString &title, const QString &text, QWidget *parent);
};
