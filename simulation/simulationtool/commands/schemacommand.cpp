#include "schemacommand.h"

#include "console/commandparser.h"
#include "console/inputfile.h"
#include "console/output.h"
#include "console/outputfile.h"

#include <QFile>

#include <algorithm>
#include <array>

namespace SimulationTool {

namespace {

const char s_szSchema[] =
    "Writes the XML schema of a format to standard output, or to the file OUT. The\n"
    "schema describes the documents as they are written, with the meaning, unit, range\n"
    "and default of every element and attribute.\n"
    "\n"
    "  scenario       a scenario document, and objects copied between scenarios\n"
    "  deployment     a deployment document\n"
    "  signalpackage  the descriptor of a signal package (Signal.xml)\n"
    "  command        the commands of the network protocol, and the records in them\n"
    "\n"
    "Readers accept more than a schema does, for example children in any order.";

const char s_szSchemaExamples[] = "\n"
                                  "Examples:\n"
                                  "  simulationtool schema scenario scenario.xsd\n"
                                  "  xmllint --noout --schema scenario.xsd harbour.sce.exp\n"
                                  "\n"
                                  "Exit codes:\n"
                                  "  0  Written.\n"
                                  "  2  Wrong usage, or OUT could not be written.\n";

constexpr std::array<QLatin1String, 4> s_names{QLatin1String("scenario"), QLatin1String("deployment"),
                                               QLatin1String("signalpackage"), QLatin1String("command")};

const QString s_sNameList = QStringLiteral("scenario, deployment, signalpackage or command");

/// The schema of that name, which the library carries.
QByteArray schemaText(const QString& a_sName)
{
    QFile file(QStringLiteral(":/Schemas/%1.xsd").arg(a_sName));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

ExitCode schema(const QStringList& a_arguments, Output& a_output)
{
    CommandParser parser(QStringLiteral("schema"), QStringLiteral("NAME [OUT]"), s_szSchema,
                         s_szSchemaExamples);
    parser.get().addPositionalArgument(QStringLiteral("NAME"), QStringLiteral("One of the names above."));
    parser.get().addPositionalArgument(QStringLiteral("OUT"),
                                       QStringLiteral("The file to write; - or none is standard output."));
    if (const auto done = parser.parse(a_arguments, a_output)) {
        return *done;
    }
    const QStringList arguments = parser.get().positionalArguments();
    if (arguments.isEmpty()) {
        return parser.refuse(QStringLiteral("a NAME is needed: ") + s_sNameList);
    }
    const QString& sName = arguments.constFirst();
    if (std::find(s_names.begin(), s_names.end(), sName) == s_names.end()) {
        return parser.refuse(QStringLiteral("there is no schema \"%1\": give %2").arg(sName, s_sNameList));
    }
    if (arguments.size() > 2 || arguments.contains(QString())) {
        return parser.refuse(QStringLiteral("at most one OUT is possible, and its name cannot be empty"));
    }
    const QByteArray text = schemaText(sName);
    const QString sOut = arguments.value(1);
    if (!sOut.isEmpty() && !isStandardStreamName(sOut)) {
        return replaceFile(sOut, text);
    }
    a_output.write(QString::fromUtf8(text));
    return ExitCode::Ok;
}

} // namespace SimulationTool
