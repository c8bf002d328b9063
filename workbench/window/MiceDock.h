#pragma once

#include "LineSender.h"

#include <QtWidgets/QWidget>

class QComboBox;
class QLineEdit;
class QPushButton;
class QSpinBox;
class QTreeWidget;
class QTreeWidgetItem;

/// The devices: which there are, which of them is the current one, and adding, starting and removing them.
class MiceDock : public QWidget
{
    Q_OBJECT

public:
    explicit MiceDock(Engine *engine, QWidget *parent = nullptr);

private:
    QWidget *makeList();
    QWidget *makeForm();
    void add();
    void useSelected(const QTreeWidgetItem *item);
    void showFields(const QJsonObject &fields);
    void showState(const QJsonObject &state);
    void showDevices(const QJsonObject &state);
    void showCurrent(const QString &id);
    void adjustForm();
    QString freeId() const;

    Engine *m_engine;
    QTreeWidget *m_list;
    QWidget *m_actions;  // of the current device
    QLineEdit *m_id;
    QComboBox *m_kind;
    QLineEdit *m_fields;
    QSpinBox *m_receiver;
    QPushButton *m_add;
    LineSender *m_sender;
    bool m_isLoaded = false;  // there is a library to make devices
    QString m_receiverInForce = QStringLiteral("1");
};
