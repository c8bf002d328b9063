#include "SequencePicture.h"

#include <QtCore/QHash>
#include <QtCore/QXmlStreamReader>

using namespace Qt::StringLiterals;

namespace {

class Reader
{
public:
    explicit Reader(const QByteArray &svg) : m_xml(svg) {}

    SequencePicture read()
    {
        while (!m_xml.atEnd()) {
            if (m_xml.readNext() != QXmlStreamReader::StartElement)
                continue;
            if (m_xml.name() == "svg"_L1)
                m_picture.size = {attribute("width").toInt(), attribute("height").toInt()};
            else if (m_xml.name() == "g"_L1)
                readGroup(attribute("class"));
            else if (m_xml.name() == "text"_L1 && attribute("class") == "remark"_L1)
                m_picture.remark = m_xml.readElementText();
        }
        if (m_xml.hasError())
            m_picture.error = m_xml.errorString();
        return m_picture;
    }

private:
    struct Line
    {
        QString ends;
        int length = 0;
    };

    QString attribute(const char *name) const
    {
        return m_xml.attributes().value(QLatin1StringView(name)).toString();
    }

    void readGroup(const QString &meaning)
    {
        QHash<QString, QString> texts;
        QHash<QString, Line> lines;
        QString through;
        for (m_xml.readNext(); !m_xml.atEnd() && !isEndOfGroup(); m_xml.readNext()) {
            if (!m_xml.isStartElement())
                continue;
            const QString name = attribute("class");
            if (m_xml.name() == "line"_L1)
                takeLine(meaning, name, texts.value(u"title"_s), lines);
            else if (m_xml.name() == "circle"_L1)
                through = u" through "_s + m_lifelineAt.value(attribute("cx").toInt());
            else if (m_xml.name() == "title"_L1)
                texts.insert(u"title"_s, m_xml.readElementText());
            else if (m_xml.name() == "text"_L1 && name == "head"_L1)
                m_picture.heads.append(m_xml.readElementText());
            else if (m_xml.name() == "text"_L1)
                texts.insert(name, m_xml.readElementText());
        }
        if (meaning.isEmpty())
            return;
        if (meaning == "lifeline"_L1)
            m_picture.lifelines.append(texts.value(u"title"_s));
        else
            takeRow(meaning, texts, lines, through);
    }

    bool isEndOfGroup() const { return m_xml.isEndElement() && m_xml.name() == "g"_L1; }

    void takeLine(const QString &meaning, const QString &name, const QString &title,
                  QHash<QString, Line> &lines)
    {
        const int from = attribute("x1").toInt();
        const int to = attribute("x2").toInt();
        if (meaning == "lifeline"_L1) {
            m_lifelineAt.insert(from, title);
            return;
        }
        QString ends = m_lifelineAt.value(from) + u" -> "_s + m_lifelineAt.value(to);
        if (m_xml.attributes().hasAttribute("stroke-dasharray"_L1))
            ends += u" dashed"_s;
        lines.insert(name, {ends, qAbs(to - from)});
    }

    void takeRow(const QString &meaning, const QHash<QString, QString> &texts,
                 const QHash<QString, Line> &lines, const QString &through)
    {
        constexpr int narrowLetter = 6;  // pixels
        const QString label = texts.value(u"label"_s);
        const Line arrow = lines.value(u"arrow"_s);
        const QString ends = arrow.ends.isEmpty() ? QString() : u' ' + arrow.ends + through;
        m_picture.rows.append(meaning + ends + u": "_s + label);
        if (!arrow.ends.isEmpty() && label.size() * narrowLetter > arrow.length)
            m_picture.cramped.append(label);
        if (lines.contains(u"answer-arrow"_s))
            m_picture.rows.append(u"answer "_s + lines.value(u"answer-arrow"_s).ends + u": "_s +
                                  texts.value(u"answer"_s));
        m_picture.titles.append(texts.value(u"title"_s));
        m_picture.numbers.append(texts.value(u"number"_s));
        m_picture.times.append(texts.value(u"time"_s));
    }

    QXmlStreamReader m_xml;
    SequencePicture m_picture;
    QHash<int, QString> m_lifelineAt;
};

}  // namespace

SequencePicture readSequence(const QByteArray &svg)
{
    return Reader(svg).read();
}
