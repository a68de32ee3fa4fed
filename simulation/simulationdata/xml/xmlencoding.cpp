#include "xmlencoding_p.h"

#include <QStringConverter>

#include <algorithm>
#include <array>
#include <utility>

namespace Simulation {

namespace {

constexpr QByteArrayView s_utf8Mark("\xEF\xBB\xBF");
constexpr QByteArrayView s_blanks(" \t\r\n");
constexpr char16_t s_cByteOrderMark = 0xFEFF;
constexpr unsigned char s_ucFirstNonAscii = 0x80;
constexpr int s_iLongestCharacter = 4;

/// The "encoding" attribute of an XML declaration.
struct DeclaredEncoding
{
    qsizetype offset = 0; ///< of the word "encoding"
    qsizetype length = 0; ///< up to and including the closing quote; 0 without this attribute
    QByteArray name;
};

qsizetype skipBlanks(QByteArrayView a_bytes, qsizetype a_iFrom)
{
    while (a_iFrom < a_bytes.size() && s_blanks.contains(a_bytes[a_iFrom])) {
        ++a_iFrom;
    }
    return a_iFrom;
}

/// Reads the encoding from the XML declaration at the start. Does not check the
/// declaration, because the parser reports errors in it.
DeclaredEncoding declaredEncoding(QByteArrayView a_bytes)
{
    constexpr QByteArrayView opening("<?xml");
    constexpr QByteArrayView encoding("encoding");
    constexpr qsizetype iMostBytes = 512;
    QByteArrayView head = a_bytes.first(std::min(a_bytes.size(), iMostBytes));
    if (!head.startsWith(opening)) {
        return {};
    }
    head = head.first(std::max<qsizetype>(head.indexOf(QByteArrayView("?>")), 0));
    for (qsizetype i = skipBlanks(head, opening.size()); i < head.size(); i = skipBlanks(head, i)) {
        const qsizetype iName = i;
        while (i < head.size() && head[i] != '=' && !s_blanks.contains(head[i])) {
            ++i;
        }
        const QByteArrayView name = head.sliced(iName, i - iName);
        i = skipBlanks(head, i);
        if (i >= head.size() || head[i] != '=') {
            return {};
        }
        i = skipBlanks(head, i + 1);
        if (i >= head.size() || (head[i] != '"' && head[i] != '\'')) {
            return {};
        }
        const qsizetype iQuote = head.indexOf(head[i], i + 1);
        if (iQuote < 0) {
            return {};
        }
        if (name == encoding) {
            return {iName, iQuote + 1 - iName, head.sliced(i + 1, iQuote - i - 1).toByteArray()};
        }
        i = iQuote + 1;
    }
    return {};
}

QByteArray withoutEncoding(QByteArray a_bytes, qsizetype a_iMark)
{
    const DeclaredEncoding declared = declaredEncoding(QByteArrayView(a_bytes).sliced(a_iMark));
    std::fill_n(a_bytes.begin() + a_iMark + declared.offset, declared.length, ' ');
    return a_bytes;
}

bool is(const QByteArray& a_name, QByteArrayView a_expected)
{
    return a_name.compare(a_expected, Qt::CaseInsensitive) == 0;
}

/// Returns the bytes before the invalid byte at `a_iOffset`. Sets the error text, which
/// contains the place of that byte.
QByteArray cutAt(const QByteArray& a_bytes, qsizetype a_iOffset, const QString& a_sReason, QString* a_pError)
{
    *a_pError = xmlErrorText(advanced({}, QByteArrayView(a_bytes).first(a_iOffset)), a_sReason);
    return a_bytes.first(a_iOffset);
}

bool isContinuation(char a_cByte)
{
    constexpr unsigned char ucMask = 0xC0;
    return (static_cast<unsigned char>(a_cByte) & ucMask) == s_ucFirstNonAscii;
}

/// Whether the bytes are the start of a UTF-8 character whose other bytes are
/// missing.
bool isCutOff(QByteArrayView a_bytes)
{
    // The first lead bytes of characters of 2, 3 and 4 bytes, and the end of the last range.
    constexpr unsigned char leads[] = {0xC2, 0xE0, 0xF0, 0xF5};
    if (a_bytes.isEmpty()) {
        return true;
    }
    const auto ucLead = static_cast<unsigned char>(a_bytes[0]);
    const auto iLength = std::upper_bound(std::begin(leads), std::end(leads), ucLead) - std::begin(leads) + 1;
    return iLength > a_bytes.size() && iLength <= s_iLongestCharacter &&
           std::all_of(a_bytes.begin() + 1, a_bytes.end(), isContinuation);
}

/// The offset of the first byte that is not valid UTF-8, or -1. A character that
/// the end of the text cuts off counts as valid.
qsizetype firstInvalidByte(QByteArrayView a_bytes)
{
    if (a_bytes.isValidUtf8()) {
        return -1;
    }
    qsizetype i = 0;
    for (int iLength = 1; iLength != 0; i += iLength) {
        iLength = firstUtf8Character(a_bytes.sliced(i)).length;
    }
    return isCutOff(a_bytes.sliced(i)) ? -1 : i;
}

QByteArray decoded(const QByteArray& a_bytes, QStringConverter::Encoding a_eEncoding, QString* a_pError)
{
    QStringDecoder decoder(a_eEncoding);
    QString sText = decoder.decode(a_bytes);
    if (sText.startsWith(QChar(s_cByteOrderMark))) {
        sText.remove(0, 1);
    }
    QStringEncoder encoder(QStringConverter::Utf8);
    QByteArray bytes = encoder.encode(sText);
    if (decoder.hasError() || encoder.hasError()) {
        return cutAt(a_bytes, 0,
                     QStringLiteral("the bytes are not valid %1")
                         .arg(QLatin1String(QStringConverter::nameForEncoding(a_eEncoding))),
                     a_pError);
    }
    return withoutEncoding(bytes, 0);
}

QByteArray checkedUtf8(const QByteArray& a_bytes, QString* a_pError)
{
    const qsizetype iInvalid = firstInvalidByte(a_bytes);
    return iInvalid < 0 ? a_bytes
                        : cutAt(a_bytes, iInvalid, QStringLiteral("the bytes are not valid UTF-8"), a_pError);
}

QByteArray checkedAscii(const QByteArray& a_bytes, QString* a_pError)
{
    const auto it = std::find_if(a_bytes.cbegin(), a_bytes.cend(), [](char a_cByte) {
        return static_cast<unsigned char>(a_cByte) >= s_ucFirstNonAscii;
    });
    const bool bValid = it == a_bytes.cend();
    return withoutEncoding(bValid ? a_bytes
                                  : cutAt(a_bytes, it - a_bytes.cbegin(),
                                          QStringLiteral("the bytes are not valid US-ASCII"), a_pError),
                           0);
}

/// Decodes a text without byte-order mark in the encoding that its declaration
/// names.
QByteArray decodedAsDeclared(const QByteArray& a_bytes, QString* a_pError)
{
    const DeclaredEncoding declared = declaredEncoding(a_bytes);
    const auto eEncoding = QStringConverter::encodingForName(declared.name.constData());
    if (declared.length == 0 || eEncoding == QStringConverter::Utf8) {
        return checkedUtf8(a_bytes, a_pError);
    }
    if (is(declared.name, "US-ASCII") || is(declared.name, "ASCII")) {
        return checkedAscii(a_bytes, a_pError);
    }
    // The declaration was read byte by byte, so a declared encoding with wider
    // characters must be wrong. The system's locale encoding is refused, too, because
    // it is not a fixed encoding.
    if (eEncoding != QStringConverter::Latin1) {
        return cutAt(
            a_bytes, 0,
            QStringLiteral("cannot decode the encoding \"%1\"").arg(QString::fromLatin1(declared.name)),
            a_pError);
    }
    return decoded(a_bytes, *eEncoding, a_pError);
}

constexpr unsigned char s_ucLastAscii = 0x7F;

bool isAsciiLetter(char a_cByte)
{
    return (a_cByte >= 'a' && a_cByte <= 'z') || (a_cByte >= 'A' && a_cByte <= 'Z');
}

bool isDigit(char a_cByte)
{
    return a_cByte >= '0' && a_cByte <= '9';
}

struct Range
{
    char32_t first;
    char32_t last;
};

/// The characters beyond ASCII that may begin a name, and further ones that may only
/// follow the first character: Extensible Markup Language 1.0, fifth edition,
/// productions 4 and 4a.
constexpr std::array<Range, 12> s_nameStarts{{{0xC0, 0xD6},
                                              {0xD8, 0xF6},
                                              {0xF8, 0x2FF},
                                              {0x370, 0x37D},
                                              {0x37F, 0x1FFF},
                                              {0x200C, 0x200D},
                                              {0x2070, 0x218F},
                                              {0x2C00, 0x2FEF},
                                              {0x3001, 0xD7FF},
                                              {0xF900, 0xFDCF},
                                              {0xFDF0, 0xFFFD},
                                              {0x10000, 0xEFFFF}}};
constexpr std::array<Range, 3> s_nameRest{{{0xB7, 0xB7}, {0x300, 0x36F}, {0x203F, 0x2040}}};

template<std::size_t Size>
bool contains(const std::array<Range, Size>& a_ranges, char32_t a_cCode)
{
    return std::any_of(a_ranges.cbegin(), a_ranges.cend(), [a_cCode](const Range& a_range) {
        return a_cCode >= a_range.first && a_cCode <= a_range.last;
    });
}

/// The length (bytes) of the name character at the start, 0 when there is none.
int nameCharacterLength(QByteArrayView a_bytes, bool a_bFirst)
{
    const char c = a_bytes[0];
    if (isAsciiLetter(c) || c == '_' || c == ':') {
        return 1;
    }
    if (static_cast<unsigned char>(c) <= s_ucLastAscii) {
        return !a_bFirst && (isDigit(c) || c == '-' || c == '.') ? 1 : 0;
    }
    const Utf8Character character = firstUtf8Character(a_bytes);
    const bool bIn =
        contains(s_nameStarts, character.code) || (!a_bFirst && contains(s_nameRest, character.code));
    return bIn ? character.length : 0;
}

} // namespace

Utf8Character firstUtf8Character(QByteArrayView a_bytes)
{
    struct Form
    {
        unsigned char mask;
        unsigned char lead;
        char32_t first; ///< smaller codes have a shorter form
    };
    constexpr Form forms[] = {
        {0x80, 0x00, 0}, {0xE0, 0xC0, 0x80}, {0xF0, 0xE0, 0x800}, {0xF8, 0xF0, 0x10000}};
    constexpr unsigned char ucContinuationBits = 0x3F;
    constexpr int iContinuationBits = 6;
    constexpr char32_t cLast = 0x10FFFF;
    if (a_bytes.isEmpty()) {
        return {};
    }
    const auto ucLead = static_cast<unsigned char>(a_bytes[0]);
    int iLength = 0;
    for (const Form& form : forms) {
        ++iLength;
        if ((ucLead & form.mask) != form.lead || iLength > a_bytes.size()) {
            continue;
        }
        char32_t cCode = ucLead & static_cast<unsigned char>(~form.mask);
        for (int i = 1; i < iLength; ++i) {
            if (!isContinuation(a_bytes[i])) {
                return {};
            }
            cCode =
                (cCode << iContinuationBits) | (static_cast<unsigned char>(a_bytes[i]) & ucContinuationBits);
        }
        const bool bValid = cCode >= form.first && cCode <= cLast && !QChar::isSurrogate(cCode);
        return bValid ? Utf8Character{cCode, iLength} : Utf8Character{};
    }
    return {};
}

bool isXmlCharacter(char32_t a_cCode)
{
    constexpr char32_t cFirstPrintable = 0x20;
    constexpr char32_t cFirstNonCharacter = 0xFFFE;
    constexpr char32_t cLastNonCharacter = 0xFFFF;
    constexpr char32_t cLast = 0x10FFFF;
    if (a_cCode < cFirstPrintable) {
        return a_cCode == U'\t' || a_cCode == U'\n' || a_cCode == U'\r';
    }
    return a_cCode <= cLast && !QChar::isSurrogate(a_cCode) &&
           (a_cCode < cFirstNonCharacter || a_cCode > cLastNonCharacter);
}

qsizetype xmlAsciiBytes(QByteArrayView a_bytes)
{
    constexpr qsizetype iBlockBytes = 64;
    constexpr unsigned char ucFirstPrintable = 0x20;
    const auto isOther = [](char a_cByte) {
        const auto ucByte = static_cast<unsigned char>(a_cByte);
        const bool bBlank = a_cByte == '\n' || a_cByte == '\r' || a_cByte == '\t';
        return (ucByte < ucFirstPrintable && !bBlank) || ucByte >= s_ucFirstNonAscii;
    };
    qsizetype i = 0;
    // The inner loop has no branch for each byte, so the compiler can vectorise it.
    for (; a_bytes.size() - i >= iBlockBytes; i += iBlockBytes) {
        const char* const pBlock = a_bytes.data() + i;
        unsigned char ucOther = 0;
        for (qsizetype j = 0; j < iBlockBytes; ++j) {
            ucOther |= static_cast<unsigned char>(isOther(pBlock[j]));
        }
        if (ucOther != 0) {
            break;
        }
    }
    return std::find_if(a_bytes.begin() + i, a_bytes.end(), isOther) - a_bytes.begin();
}

qsizetype utf8MarkBytes(QByteArrayView a_bytes)
{
    return a_bytes.startsWith(s_utf8Mark) ? s_utf8Mark.size() : 0;
}

QByteArray toUtf8Xml(const QByteArray& a_bytes, QString* a_pError)
{
    a_pError->clear();
    const auto eDetected = QStringConverter::encodingForData(a_bytes, u'<');
    if (!eDetected) {
        return decodedAsDeclared(a_bytes, a_pError);
    }
    if (*eDetected != QStringConverter::Utf8) {
        return decoded(a_bytes, *eDetected, a_pError);
    }
    const qsizetype iMark = utf8MarkBytes(a_bytes);
    const DeclaredEncoding declared = declaredEncoding(QByteArrayView(a_bytes).sliced(iMark));
    const bool bAgreed = declared.length == 0 || is(declared.name, "UTF-8");
    return checkedUtf8(bAgreed ? a_bytes : withoutEncoding(a_bytes, iMark), a_pError);
}

qsizetype xmlNameLength(QByteArrayView a_bytes, bool a_bFirst)
{
    qsizetype i = 0;
    while (i < a_bytes.size()) {
        const int iLength = nameCharacterLength(a_bytes.sliced(i), a_bFirst && i == 0);
        if (iLength == 0) {
            break;
        }
        i += iLength;
    }
    return i;
}

bool isXmlName(QByteArrayView a_text)
{
    return !a_text.isEmpty() && xmlNameLength(a_text) == a_text.size();
}

QString utf8String(QByteArrayView a_bytes)
{
    if (utf8MarkBytes(a_bytes) == 0) {
        return QString::fromUtf8(a_bytes);
    }
    QStringDecoder decoder(QStringConverter::Utf8,
                           QStringConverter::Flag::ConvertInitialBom | QStringConverter::Flag::Stateless);
    return decoder.decode(a_bytes);
}

char32_t xmlReferencedCharacter(QByteArrayView a_reference)
{
    if (!a_reference.startsWith('#')) {
        constexpr std::pair<QByteArrayView, char32_t> entities[] = {
            {"amp", U'&'}, {"lt", U'<'}, {"gt", U'>'}, {"quot", U'"'}, {"apos", U'\''}};
        const auto found = std::find_if(std::begin(entities), std::end(entities),
                                        [&](const auto& a_entity) { return a_entity.first == a_reference; });
        return found == std::end(entities) ? 0 : found->second;
    }
    constexpr int iHexadecimal = 16;
    constexpr int iDecimal = 10;
    constexpr char32_t cBeyond = 0x110000;
    const bool bHexadecimal = a_reference.startsWith("#x");
    const QByteArrayView digits = a_reference.sliced(bHexadecimal ? 2 : 1);
    char32_t cCode = 0;
    for (const char c : digits) {
        int iDigit = c <= '9' ? c - '0' : iHexadecimal; // not a digit
        if (bHexadecimal && c >= 'a' && c <= 'f') {
            iDigit = iDecimal + (c - 'a');
        } else if (bHexadecimal && c >= 'A' && c <= 'F') {
            iDigit = iDecimal + (c - 'A');
        }
        const int iBase = bHexadecimal ? iHexadecimal : iDecimal;
        if (iDigit < 0 || iDigit >= iBase) {
            return 0;
        }
        cCode = std::min(
            static_cast<char32_t>(cCode * static_cast<char32_t>(iBase) + static_cast<char32_t>(iDigit)),
            cBeyond);
    }
    return cCode;
}

} // namespace Simulation
