#include "documentloss.h"

#include <QHash>
#include <QStringList>
#include <QXmlStreamReader>

#include <algorithm>

namespace SimulationTool {

namespace {

constexpr qsizetype s_iShownParts = 3;
constexpr qsizetype s_iShownCharacters = 40; ///< of a part's name
constexpr qsizetype s_iObjectDepth = 2;      ///< path length of an object's element: root, object

/// The parts of a document, counted, in the order of first appearance. A part is an
/// element, an attribute or a note (a comment or processing instruction) at one place.
struct Parts
{
    void add(const QString& a_sPlace, const QString& a_sText)
    {
        if (const QString sKey = a_sPlace + u'\n' + a_sText; counts[sKey]++ == 0) {
            keys.append(sKey);
            texts.append(a_sText);
        }
    }

    QHash<QString, qsizetype> counts;
    QStringList keys;
    QStringList texts;
};

/// Whether the reader converts this element of an older format (before version 4) to
/// an element with another name.
bool isConverted(const QStringList& a_path)
{
    const QString& sName = a_path.constLast();
    return a_path.size() == s_iObjectDepth + 1 &&
           (sName == u"Timing" || sName == u"Activity" || sName == u"SignalPackage");
}

bool isConverted(const QStringList& a_path, QStringView a_sAttribute)
{
    return a_path.size() == 1 && a_sAttribute == u"Description";
}

void addElement(Parts& a_parts, QXmlStreamReader& a_reader, QStringList& a_path)
{
    QString sStep = a_reader.qualifiedName().toString();
    const QString sName = sStep.left(s_iShownCharacters);
    if (a_path.size() + 1 == s_iObjectDepth) {
        // The place includes the id. Otherwise a part of one object would hide that another
        // object lacks this part.
        sStep += u' ';
        sStep += a_reader.attributes().value(QLatin1String("ID"));
    }
    a_path.append(sStep);
    if (isConverted(a_path)) {
        a_reader.skipCurrentElement();
        a_path.removeLast();
        return;
    }
    const QString sPlace = a_path.join(u'/');
    a_parts.add(sPlace, QStringLiteral("element \"%1\"").arg(sName));
    for (const QXmlStreamAttribute& attribute : a_reader.attributes()) {
        if (!attribute.value().isEmpty() && !isConverted(a_path, attribute.qualifiedName())) {
            a_parts.add(sPlace, QStringLiteral("attribute \"%1\" of \"%2\"")
                                    .arg(attribute.qualifiedName().left(s_iShownCharacters), sName));
        }
    }
}

/// The elements, attributes and notes of a document.
Parts partsOf(const QByteArray& a_document)
{
    Parts parts;
    QStringList path;
    QXmlStreamReader reader(a_document);
    while (!reader.atEnd()) {
        switch (reader.readNext()) {
        case QXmlStreamReader::StartElement:
            addElement(parts, reader, path);
            break;
        case QXmlStreamReader::EndElement:
            path.removeLast();
            break;
        case QXmlStreamReader::Comment:
        case QXmlStreamReader::ProcessingInstruction:
            parts.add({}, reader.isComment() ? QStringLiteral("comment")
                                             : QStringLiteral("processing instruction"));
            break;
        default:
            break;
        }
    }
    return parts;
}

} // namespace

QString documentLoss(const QByteArray& a_source, const QByteArray& a_written)
{
    const Parts source = partsOf(a_source);
    const Parts written = partsOf(a_written);
    QStringList shown;
    qsizetype iLost = 0;
    bool bAllShown = true;
    for (qsizetype i = 0; i < source.keys.size(); ++i) {
        const QString& sKey = source.keys.at(i);
        const qsizetype iMissing = source.counts.value(sKey) - written.counts.value(sKey);
        if (iMissing <= 0) {
            continue;
        }
        iLost += iMissing;
        bAllShown = shown.size() < s_iShownParts;
        if (bAllShown) {
            shown.append(QStringLiteral("%1 (%2)").arg(source.texts.at(i), QString::number(iMissing)));
        }
    }
    const QString sShown = shown.join(QStringLiteral(", "));
    return bAllShown ? sShown
                     : QStringLiteral("%1 parts, first of them %2").arg(QString::number(iLost), sShown);
}

} // namespace SimulationTool
