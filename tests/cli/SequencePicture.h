#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtCore/QStringList>

/// What somebody sees who reads a sequence diagram.
struct SequencePicture
{
    /// Why the file is no XML; empty when it is.
    QString error;
    QSize size;
    QStringList lifelines;
    /// Their names, as they are written above and below.
    QStringList heads;
    /// "call host -> device 42: start()", "note: debug ...", with " dashed" and " through receiver 1" behind
    /// the ends where it is so.
    QStringList rows;
    /// The full text of each row, as a tooltip shows it.
    QStringList titles;
    QStringList numbers;
    QStringList times;
    QString remark;
    /// Labels that are wider than the place between the ends of their arrow.
    QStringList cramped;
};

SequencePicture readSequence(const QByteArray &svg);
