#ifndef SIMULATIONDATA_XMLNODEWRITER_P_H
#define SIMULATIONDATA_XMLNODEWRITER_P_H

#include <QByteArray>

#include <pugixml.hpp>

#include <vector>

namespace Simulation {

/// Writes an element of a document tree as text in the form that
/// XmlElement::toByteArray() describes. It uses no recursion, so deep trees do not
/// exhaust the call stack. Each object writes one text.
class XmlNodeWriter
{
public:
    [[nodiscard]] QByteArray write(pugi::xml_node a_element);

private:
    /// How the children of an element are laid out in the text.
    enum class Layout : unsigned char {
        Inline, ///< unchanged, because there is text beside them
        Block,  ///< each element on a line of its own
    };

    void writeNode(pugi::xml_node a_node);
    void openElement(pugi::xml_node a_element);
    void closeElement(pugi::xml_node a_element);
    void startLine();
    void endLine();
    [[nodiscard]] Layout layout() const { return m_layouts.empty() ? Layout::Block : m_layouts.back(); }

    QByteArray m_text;
    std::vector<Layout> m_layouts; ///< one per open element
};

} // namespace Simulation

#endif
