#include "xmlname_p.h"

#include "xmlencoding_p.h"

#include <algorithm>
#include <array>

namespace Simulation {

namespace {

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

/// Extensible Markup Language 1.0, fifth edition, productions 4 and 4a, beyond
/// ASCII.
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

/// The bytes of the name character at the start, 0 when there is none.
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

} // namespace Simulation
