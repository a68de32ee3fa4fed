#include "randomdocuments.h"
#include "schemamutations.h"
#include "simulationdata/deploymentdataxml.h"
#include "simulationdata/scenariodataxml.h"
#include "simulationdata/signalpackagefile.h"
#include "simulationdata/unresolvedsignalpackageprovider.h"
#include "simulationdata/xmlelement.h"

#include <QFile>
#include <QLoggingCategory>
#include <QMap>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTemporaryDir>
#include <QTest>

#include <span>

using namespace Simulation;

namespace {

constexpr std::uint32_t s_uiSeed = 20'261'123;
constexpr int s_iDocuments = 150;  ///< of each kind
constexpr int s_iTimeout = 60'000; ///< ms

/// The exit codes of xmllint.
constexpr int s_iValid = 0;
constexpr int s_iInvalid = 3;

const QString s_sScenario = QStringLiteral("scenario");
const QString s_sDeployment = QStringLiteral("deployment");
const QString s_sSignalPackage = QStringLiteral("signalpackage");
const QString s_sCommand = QStringLiteral("command");
const QStringList s_schemas{s_sScenario, s_sDeployment, s_sSignalPackage, s_sCommand};

const QString s_sDefaultScenario = QStringLiteral(":/DefaultData/Default.sce.exp");
const QString s_sFullDeployment = QStringLiteral(TEST_DATA_DIR "/deployments/Full.xml");
const QString s_sDefaultDescriptor =
    QStringLiteral(":/DefaultData/Descriptors/c0d40372-37c8-4ad4-9fb1-97bfc477769c.xml");

QByteArray fileBytes(const QString& a_sFile)
{
    QFile file(a_sFile);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QByteArray schemaBytes(const QString& a_sSchema)
{
    return fileBytes(QStringLiteral(":/Schemas/%1.xsd").arg(a_sSchema));
}

struct Validation
{
    int iCode = -1;
    QByteArray errors;
};

/// Validates all documents in one run of xmllint.
Validation validate(const QString& a_sSchema, const QByteArrayList& a_documents)
{
    const QTemporaryDir folder;
    QStringList arguments{QStringLiteral("--nonet"), QStringLiteral("--noout"), QStringLiteral("--schema"),
                          QStringLiteral(SCHEMA_DIR "/%1.xsd").arg(a_sSchema)};
    for (const QByteArray& document : a_documents) {
        const QString sFile = folder.filePath(QStringLiteral("%1.xml").arg(arguments.size()));
        QFile file(sFile);
        if (!file.open(QIODevice::WriteOnly) || file.write(document) != document.size()) {
            return {};
        }
        arguments.append(sFile);
    }
    QProcess process;
    process.start(QStringLiteral(XMLLINT_PATH), arguments);
    Validation result;
    if (process.waitForFinished(s_iTimeout) && process.exitStatus() == QProcess::NormalExit) {
        result.iCode = process.exitCode();
    }
    result.errors = process.readAllStandardError().left(2000);
    return result;
}

/// A schema cannot declare a name with two colons.
QByteArray withPlainRoot(QByteArray a_record)
{
    return a_record.replace("Simulation::", "");
}

QByteArray startCommand()
{
    return SimulationServiceCommunication::encode(
        [](SimulationServiceCommunication& a_to) { a_to.sendStartScenario(1000, 250); });
}

/// Calls `a_visit` with every element of the document.
template<typename Visit>
void visitAll(const XmlElement& a_element, const Visit& a_visit)
{
    a_visit(a_element);
    for (XmlElement child = a_element.firstChild(); !child.isNull(); child = child.nextSibling()) {
        visitAll(child, a_visit);
    }
}

bool isDeclaration(const XmlElement& a_element)
{
    const QString sTag = a_element.tagName();
    return (sTag == u"xs:element" || sTag == u"xs:attribute") &&
           a_element.hasAttribute(QStringLiteral("name"));
}

QString documentation(const XmlElement& a_element)
{
    return a_element.firstChild(QStringLiteral("xs:annotation"))
        .childText(QStringLiteral("xs:documentation"));
}

/// The reading report about a document of the schema of that name.
ReadingReport reportOf(const QString& a_sSchema, const QByteArray& a_document)
{
    if (a_sSchema == s_sScenario) {
        UnresolvedSignalPackageProvider provider;
        ScenarioDataXml scenario(&provider);
        static_cast<void>(scenario.fromXml(a_document));
        return scenario.report();
    }
    if (a_sSchema == s_sDeployment) {
        DeploymentDataXml deployment;
        static_cast<void>(deployment.fromXml(a_document));
        return deployment.report();
    }
    return SignalPackageFile::report(a_document);
}

} // namespace

/// The schemas accept everything that is written, and refuse common mistakes.
class TestSchemas : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase();
    void written_data();
    void written();
    void onlyWritten_data();
    void onlyWritten();
    void mistakes_data();
    void mistakes();
    void beyondSchema();
    void documented_data();
    void documented();
    void sameTypes();

private:
    /// Documents of each schema.
    QMap<QString, QByteArrayList> m_documents;
};

void TestSchemas::initTestCase()
{
    QLoggingCategory::setFilterRules(QStringLiteral("simulation.trace=false"));
    qInfo("Seed of the random documents: %u", s_uiSeed);
    RandomDocuments random(s_uiSeed);
    for (int i = 0; i < s_iDocuments; ++i) {
        m_documents[s_sScenario] += {random.scenario(RandomDocuments::Form::Document),
                                     random.scenario(RandomDocuments::Form::Objects), random.movements()};
        m_documents[s_sDeployment] += random.deployment();
        m_documents[s_sSignalPackage] += random.descriptor();
        m_documents[s_sCommand] += random.commands();
        m_documents[s_sCommand] += withPlainRoot(random.deviceConfiguration().toXml());
        m_documents[s_sCommand] += withPlainRoot(random.deviceState().toXml());
    }
    m_documents[s_sScenario] +=
        {fileBytes(s_sDefaultScenario), fileBytes(QStringLiteral(TEST_DATA_DIR "/scenarios/Rich.sce"))};
    m_documents[s_sDeployment] += fileBytes(s_sFullDeployment);
    m_documents[s_sSignalPackage] += fileBytes(s_sDefaultDescriptor);
    m_documents[s_sCommand] += startCommand();
    for (const QByteArrayList& documents : std::as_const(m_documents)) {
        QVERIFY(!documents.contains(QByteArray()));
    }
}

void TestSchemas::written_data()
{
    QTest::addColumn<QString>("schema");
    for (const QString& sSchema : s_schemas) {
        QTest::newRow(qPrintable(sSchema)) << sSchema;
    }
}

void TestSchemas::written()
{
    QFETCH(const QString, schema);
    const Validation result = validate(schema, m_documents.value(schema));
    QVERIFY2(result.iCode == s_iValid, result.errors.constData());
}

void TestSchemas::onlyWritten_data()
{
    written_data();
}

/// A schema declares no name that is never written.
void TestSchemas::onlyWritten()
{
    QFETCH(const QString, schema);
    const QByteArray all = m_documents.value(schema).join();
    visitAll(XmlElement::parse(schemaBytes(schema)), [&](const XmlElement& a_element) {
        if (!isDeclaration(a_element)) {
            return;
        }
        const QString sName = a_element.attribute(QStringLiteral("name"));
        const bool bAttribute = a_element.tagName() == u"xs:attribute";
        const QRegularExpression use(bAttribute ? QStringLiteral("\\s%1=\"").arg(sName)
                                                : QStringLiteral("<%1[\\s/>]").arg(sName));
        QVERIFY2(QString::fromUtf8(all).contains(use), qPrintable(sName));
    });
}

void TestSchemas::mistakes_data()
{
    QTest::addColumn<QString>("schema");
    QTest::addColumn<QByteArray>("document");
    QTest::addColumn<QByteArray>("find");
    QTest::addColumn<QByteArray>("replacement");
    QTest::addColumn<int>("code");

    const auto add = [](const QString& a_sSchema, const QByteArray& a_document, int a_iCode,
                        std::span<const Mutation> a_mutations) {
        for (const Mutation& mutation : a_mutations) {
            QTest::addRow("%s: %s", qPrintable(a_sSchema), mutation.name)
                << a_sSchema << a_document << QByteArray(mutation.find) << QByteArray(mutation.replacement)
                << a_iCode;
        }
    };
    const QByteArray scenario = fileBytes(s_sDefaultScenario);
    add(s_sScenario, scenario, s_iInvalid, s_scenarioMutations);
    add(s_sScenario, scenario, s_iValid, s_acceptedScenarioMutations);
    const QByteArray deployment = fileBytes(s_sFullDeployment);
    add(s_sDeployment, deployment, s_iInvalid, s_deploymentMutations);
    add(s_sDeployment, deployment, s_iValid, s_acceptedDeploymentMutations);
    add(s_sSignalPackage, fileBytes(s_sDefaultDescriptor), s_iInvalid, s_descriptorMutations);
    add(s_sCommand, startCommand(), s_iInvalid, s_commandMutations);
}

void TestSchemas::mistakes()
{
    QFETCH(const QString, schema);
    QFETCH(QByteArray, document);
    QFETCH(const QByteArray, find);
    QFETCH(const QByteArray, replacement);
    QFETCH(const int, code);
    QVERIFY(document.contains(find));
    document.replace(find, replacement);
    const Validation result = validate(schema, {document});
    QVERIFY2(result.iCode == code, result.errors.constData());
    if (code == s_iInvalid && schema != s_sCommand) {
        QVERIFY(!reportOf(schema, document).isEmpty());
    }
}

/// What the reading report finds in documents that the schema accepts, and what neither
/// finds.
void TestSchemas::beyondSchema()
{
    const auto silent = [](const QString& a_sSchema, const QByteArray& a_document, auto a_mutations) {
        QStringList names;
        for (const Mutation& mutation : a_mutations) {
            const QByteArray document = QByteArray(a_document).replace(mutation.find, mutation.replacement);
            if (reportOf(a_sSchema, document).isEmpty()) {
                names.append(QString::fromUtf8(mutation.name));
            }
        }
        return names;
    };
    const auto scenario =
        silent(s_sScenario, fileBytes(s_sDefaultScenario), std::span(s_acceptedScenarioMutations));
    const auto deployment =
        silent(s_sDeployment, fileBytes(s_sFullDeployment), std::span(s_acceptedDeploymentMutations));
    // A checker of the loaded scenario, or the program that plays it, decides about these.
    QCOMPARE(scenario.join(u"; "), QStringLiteral("maximum below minimum; too many channels; negative start; "
                                                  "unknown signal package; two networks of one id"));
    QCOMPARE(deployment.join(u"; "), QStringLiteral("empty id"));
}

void TestSchemas::documented_data()
{
    written_data();
}

/// Every element and attribute is described. The description of a value names its
/// default, and that of a number also its unit and range.
void TestSchemas::documented()
{
    QFETCH(const QString, schema);
    const XmlElement root = XmlElement::parse(schemaBytes(schema));
    const QString sName = QStringLiteral("name");
    QSet<QString> complexTypes;
    QMap<QString, QString> bases; // of the simple types
    for (XmlElement type = root.firstChild(); !type.isNull(); type = type.nextSibling()) {
        if (type.tagName() == u"xs:complexType") {
            complexTypes.insert(type.attribute(sName));
        } else if (type.tagName() == u"xs:simpleType") {
            QVERIFY2(!documentation(type).isEmpty(), qPrintable(type.attribute(sName)));
            bases.insert(type.attribute(sName),
                         type.firstChild(QStringLiteral("xs:restriction")).attribute(QStringLiteral("base")));
        }
    }
    visitAll(root, [&](const XmlElement& a_element) {
        if (!isDeclaration(a_element)) {
            return;
        }
        const QString sText = documentation(a_element);
        const QByteArray place = (a_element.attribute(sName) + QStringLiteral(": ") + sText).toUtf8();
        QVERIFY2(!sText.isEmpty(), place.constData());
        QString sType = a_element.attribute(QStringLiteral("type"));
        if (sType.isEmpty() || complexTypes.contains(sType)) {
            return;
        }
        while (bases.contains(sType)) {
            sType = bases.value(sType);
        }
        QVERIFY2(sText.contains(QStringLiteral(" Default: ")), place.constData());
        const bool bNumber = sType != u"xs:string" && sType != u"xs:token" && sType != u"xs:dateTime";
        QVERIFY2(!bNumber || (sText.contains(QStringLiteral(" Unit: ")) &&
                              sText.contains(QStringLiteral(" Range: "))),
                 place.constData());
    });
}

/// Each schema can be used alone, so some types are in several of them.
void TestSchemas::sameTypes()
{
    static const QRegularExpression type(
        QStringLiteral("^  <xs:(\\w+Type) name=\"(\\w+)\">\n.*?^  </xs:\\1>$"),
        QRegularExpression::MultilineOption | QRegularExpression::DotMatchesEverythingOption);
    QMap<QString, QString> types;
    int iShared = 0;
    for (const QString& sSchema : s_schemas) {
        auto matches = type.globalMatch(QString::fromUtf8(schemaBytes(sSchema)));
        while (matches.hasNext()) {
            const auto match = matches.next();
            const QString sText = types.value(match.captured(2), match.captured());
            iShared += types.contains(match.captured(2)) ? 1 : 0;
            QCOMPARE(match.captured(), sText);
            types.insert(match.captured(2), sText);
        }
    }
    QVERIFY(iShared > 0);
}

QTEST_GUILESS_MAIN(TestSchemas)

#include "tst_schemas.moc"
