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

/// For whom a report is.
enum class ReportForm {
    Text, ///< people: headings, labelled values and tables, written as they arrive
    Json, ///< programs: one JSON document, written by finish()
};

/// Adds the option --json to a command.
void addJsonOption(QCommandLineParser& a_parser);
/// What the parsed arguments ask for.
[[nodiscard]] ReportForm reportForm(const QCommandLineParser& a_parser);

/// A row of a table as people read it.
[[nodiscard]] QStringList cellTexts(const ReportRow& a_row);
/// A row of a table as programs get it: the columns that have a key.
[[nodiscard]] QJsonObject rowObject(const QList<TextColumn>& a_columns, const ReportRow& a_row);

/// Writes the report of a command to the output, which it does not own. The
/// command reports every fact once, with its label for people and its key for
/// programs; a null key keeps a fact that others already carry from programs.
///
/// For programs a fact belongs to the present place: the document itself, until
/// a heading opens an object of it.
class Report
{
public:
    explicit Report(Output& a_output, ReportForm a_eForm = ReportForm::Text);

    [[nodiscard]] ReportForm form() const { return m_eForm; }

    /// A heading in the first column, after an empty line unless it is the
    /// first. The present place becomes the document itself.
    void heading(const QString& a_sText);
    /// The same; the present place becomes the document's object of that key.
    void heading(const QString& a_sText, const char* a_szKey);
    /// The same; the present place becomes a new object at the end of the
    /// document's list of that key.
    void itemHeading(const QString& a_sText, const char* a_szKey);
    /// A new object at the end of a list, without anything that people see.
    void beginItem(const char* a_szKey);
    /// From now on facts belong to the document itself again.
    void endPlace() { closePlace(); }
    /// A list that may stay empty.
    void list(const char* a_szKey);

    /// A label and its value, wrapped at spaces and broken at line ends.
    void field(const char* a_szKey, const QString& a_sLabel, const ReportValue& a_value);
    /// A value for programs only: people read it in another fact's text.
    void value(const char* a_szKey, const QJsonValue& a_value);
    /// A field about the whole report: apart, unless there are but fields before
    /// it. It belongs to the document itself.
    void conclusion(const char* a_szKey, const QString& a_sLabel, const ReportValue& a_value);
    /// A line for people only.
    void line(const QString& a_sText);
    /// For programs an object at the end of the present place's list of that key.
    void record(const char* a_szKey, const QJsonObject& a_object);
    /// The same, and a line for people.
    void record(const char* a_szKey, const QJsonObject& a_object, const QString& a_sText);

    /// A line of something that is followed, written at once: the text for people,
    /// the object on one line for programs, who get no document then. False once the
    /// output failed.
    [[nodiscard]] bool event(const QJsonObject& a_object, const QString& a_sText);

    /// A table from the first column on; for programs a list of objects. People
    /// see nothing without rows.
    void plainTable(const char* a_szKey, const QList<TextColumn>& a_columns, const QList<ReportRow>& a_rows);
    /// The same, indented.
    void table(const char* a_szKey, const QList<TextColumn>& a_columns, const QList<ReportRow>& a_rows);
    /// The same with a title line of its own.
    void titledTable(const char* a_szKey, const QString& a_sTitle, const QList<TextColumn>& a_columns,
                     const QList<ReportRow>& a_rows);

    /// Writes the document for programs; nothing for people, who have it all, and
    /// nothing after an event(). To be called once, last.
    void finish();
    /// False once the output failed: the rest need not be put together.
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
    bool m_bEvents = false;    ///< were written
    bool m_bOnlyFields = true; ///< below the first heading

    // For programs. A large list is copied when it is taken out of an object.
    QJsonObject m_document;
    QMap<QString, QJsonArray> m_lists; ///< of the document
    QJsonObject m_place;               ///< when it is not the document
    QMap<QString, QJsonArray> m_placeLists;
    QString m_sPlaceKey; ///< empty: the document is the present place
    bool m_bPlaceInList = false;
};

} // namespace SimulationTool

#endif
