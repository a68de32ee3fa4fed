#ifndef SIMULATIONTOOL_REPORT_H
#define SIMULATIONTOOL_REPORT_H

#include "reportvalue.h"
#include "texttable.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

class QCommandLineParser;

namespace SimulationTool {

class Output;

/// The form of a report.
enum class ReportForm {
    Text, ///< for people: headings, labelled values and tables, written as they arrive
    Json, ///< for programs: one JSON document, written by finish()
};

/// Adds the option --json to a command.
void addJsonOption(QCommandLineParser& a_parser);
/// The form that the parsed arguments select.
[[nodiscard]] ReportForm reportForm(const QCommandLineParser& a_parser);

/// A table row as text for people; "-" for an empty cell.
[[nodiscard]] QStringList cellTexts(const ReportRow& a_row);
/// A table row as an object for programs, with the columns that have a key.
[[nodiscard]] QJsonObject rowObject(const QList<TextColumn>& a_columns, const ReportRow& a_row);

/// Writes the report of a command, as text for people or as JSON for programs, to an
/// output that it does not own. The command reports every fact once, with a label for
/// people and a key for programs. JSON omits a fact whose key is null.
///
/// In JSON a fact is added to the current place: the document itself, or the object
/// that the latest heading with a key began.
class Report
{
public:
    explicit Report(Output& a_output, ReportForm a_eForm = ReportForm::Text);

    [[nodiscard]] ReportForm form() const { return m_eForm; }

    /// A heading in the first column, after an empty line unless it is the first. The
    /// current place becomes the document itself.
    void heading(const QString& a_sText);
    /// A heading as above; the current place becomes the document's object of that key.
    void heading(const QString& a_sText, const char* a_szKey);
    /// A heading as above; the current place becomes a new object at the end of the
    /// document's list of that key.
    void itemHeading(const QString& a_sText, const char* a_szKey);
    /// Begins a new object at the end of the document's list of that key. The text form
    /// does not show it.
    void beginItem(const char* a_szKey);
    /// Ends the current object: further values belong to the document itself.
    void endPlace() { closePlace(); }
    /// Adds a list of that key to the current place, so that it is written even when
    /// empty.
    void list(const char* a_szKey);

    /// A label and its value, wrapped at spaces and broken at line ends.
    void field(const char* a_szKey, const QString& a_sLabel, const ReportValue& a_value);
    /// A value for programs only; people read it in the text of another fact.
    void value(const char* a_szKey, const QJsonValue& a_value);
    /// A field about the whole report. In JSON it belongs to the document itself. An empty
    /// line precedes it, unless the report has only one heading and no table().
    void conclusion(const char* a_szKey, const QString& a_sLabel, const ReportValue& a_value);
    /// A line for people only.
    void line(const QString& a_sText);
    /// For programs: appends an object to the current place's list of that key.
    void record(const char* a_szKey, const QJsonObject& a_object);
    /// For programs: appends an object as above. For people: writes a line.
    void record(const char* a_szKey, const QJsonObject& a_object, const QString& a_sText);

    /// Writes one event of a followed stream immediately: the text for people, or the
    /// object on one line for programs. After an event, finish() writes no document. False
    /// once the output failed.
    [[nodiscard]] bool event(const QJsonObject& a_object, const QString& a_sText);

    /// A table without indentation; for programs a list of objects. A table without
    /// rows is not shown to people.
    void plainTable(const char* a_szKey, const QList<TextColumn>& a_columns, const QList<ReportRow>& a_rows);
    /// A table as above, but indented.
    void table(const char* a_szKey, const QList<TextColumn>& a_columns, const QList<ReportRow>& a_rows);
    /// An indented table with a title line.
    void titledTable(const char* a_szKey, const QString& a_sTitle, const QList<TextColumn>& a_columns,
                     const QList<ReportRow>& a_rows);

    /// Writes the JSON document, unless an event() was written. The text form is complete
    /// already. Call once, last.
    void finish();
    /// False once the output failed; the caller may skip the rest of the report.
    [[nodiscard]] bool isOk() const;

private:
    [[nodiscard]] bool isText() const { return m_eForm == ReportForm::Text; }
    void writeHeading(const QString& a_sText);
    void writeTable(const QList<TextColumn>& a_columns, const QList<ReportRow>& a_rows, qsizetype a_iIndent);
    void keepTable(const char* a_szKey, const QList<TextColumn>& a_columns, const QList<ReportRow>& a_rows);
    void keep(const char* a_szKey, const QJsonValue& a_value);
    void closePlace();

    Output& m_output;
    ReportForm m_eForm;
    bool m_bFirst = true;
    bool m_bEvents = false;    ///< an event was written
    bool m_bOnlyFields = true; ///< one heading at most, and no table() yet

    // The JSON document. The lists are separate members, because appending to a list
    // inside a QJsonObject would copy the list.
    QJsonObject m_document;
    QMap<QString, QJsonArray> m_lists; ///< the document's lists
    QJsonObject m_place;               ///< the current place, unless that is the document
    QMap<QString, QJsonArray> m_placeLists;
    QString m_sPlaceKey; ///< empty: the document is the current place
    bool m_bPlaceInList = false;
};

} // namespace SimulationTool

#endif
