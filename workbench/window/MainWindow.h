#pragma once

#include <QtWidgets/QMainWindow>

// The window's frame: docks, menus and settings.
class MainWindow final : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget *parent = nullptr);
};
