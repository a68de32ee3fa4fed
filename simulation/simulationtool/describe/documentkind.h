#ifndef SIMULATIONTOOL_DOCUMENTKIND_H
#define SIMULATIONTOOL_DOCUMENTKIND_H

#include <optional>

namespace SimulationTool {

class InputFile;

/// The kinds of documents that can be checked.
enum class DocumentKind {
    Scenario,
    Deployment,
    Descriptor, ///< of a signal package
    Compact,    ///< the compact form of a scenario
};

/// The name of a kind, as reports for programs have it: "scenario".
[[nodiscard]] const char* kindName(DocumentKind a_eKind);

/// Recognises a document among other files: by its root element, by a root element of a
/// similar name, by the ending of the file name, or as a compact form with at least one
/// emitter. No value for any other file.
[[nodiscard]] std::optional<DocumentKind> recognisedKind(const InputFile& a_file);

/// The kind of a file that should be a document: the recognised kind, or a compact form
/// that breaks off in its first record. Any other file counts as a scenario.
[[nodiscard]] DocumentKind kindOf(const InputFile& a_file);

} // namespace SimulationTool

#endif
