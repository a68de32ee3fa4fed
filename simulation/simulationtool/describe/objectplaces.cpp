#include "objectplaces.h"

#include "console/sourceexcerpt.h"

#include <QXmlStreamReader>

#include <algorithm>

namespace SimulationTool {

namespace {

constexpr int s_iObjectDepth = 2; ///< root, object

/// Converts ascending offsets of a text to places.
class PlaceCounter
{
public:
    explicit PlaceCounter(const QString& a_sText)
        : m_sText(a_sText)
    {}

    TextPlace at(qint64 a_iOffset)
    {
        const auto iEnd = std::min<qsizetype>(a_iOffset, m_sText.size());
        for (; m_iOffset < iEnd; ++m_iOffset) {
            if (m_sText.at(m_iOffset) == u'\n') {
                m_place = {m_place.line + 1, 1};
            } else if (!m_sText.at(m_iOffset).isLowSurrogate()) {
                ++m_place.column;
            }
        }
        return m_place;
    }

private:
    const QString& m_sText;
    qsizetype m_iOffset = 0;
    TextPlace m_place{1, 1};
};

/// The offset of the tag after a part that ends at an offset. The toolkit's reader counts
/// the "<" after a text as part of the text.
qint64 tagStart(const QString& a_sText, qint64 a_iOffset)
{
    return a_iOffset > 0 && a_sText.at(a_iOffset - 1) == u'<' ? a_iOffset - 1 : a_iOffset;
}

} // namespace

ObjectPlaces objectPlaces(const QByteArray& a_document)
{
    const QString sText = QString::fromUtf8(utf8Document(a_document));
    PlaceCounter counter(sText);
    ObjectPlaces places;
    QXmlStreamReader reader(sText);
    int iDepth = 0;
    QString sId;
    ObjectRange object;
    qint64 iBefore = 0; // offset at which the token that was read last begins
    while (!reader.atEnd()) {
        reader.readNext();
        if (reader.isStartElement() && ++iDepth == s_iObjectDepth) {
            sId = reader.attributes().value(QLatin1String("ID")).toString();
            object.begin = counter.at(tagStart(sText, iBefore));
        } else if (reader.isEndElement() && iDepth-- == s_iObjectDepth && !places.contains(sId)) {
            object.end = counter.at(reader.characterOffset());
            places.insert(sId, object);
        }
        iBefore = reader.characterOffset();
    }
    if (iDepth >= s_iObjectDepth && !places.contains(sId)) {
        object.end = counter.at(reader.characterOffset());
        places.insert(sId, object);
    }
    return places;
}

} // namespace SimulationTool
