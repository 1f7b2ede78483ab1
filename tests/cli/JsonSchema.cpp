#include "JsonSchema.h"

#include "support/TestSupport.h"

#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <memory>
#include <numeric>
#include <valijson/adapters/qtjson_adapter.hpp>
#include <valijson/schema.hpp>
#include <valijson/schema_parser.hpp>
#include <valijson/validator.hpp>

namespace quillon::test {

namespace {

const valijson::Schema& publishedSchema()
{
    static const std::unique_ptr<valijson::Schema> schema = [] {
        auto parsed = std::make_unique<valijson::Schema>();
        const QJsonDocument text =
            QJsonDocument::fromJson(readAll(repoPath(QStringLiteral("schema/quillon-1.schema.json"))));
        valijson::SchemaParser(valijson::SchemaParser::kDraft7)
            .populateSchema(valijson::adapters::QtJsonAdapter(text.object()), *parsed);
        return parsed;
    }();
    return *schema;
}

} // namespace

QString schemaViolations(const QByteArray& json)
{
    QJsonParseError parsed;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parsed);
    if (parsed.error != QJsonParseError::NoError)
        return QStringLiteral("not JSON: ") + parsed.errorString();
    valijson::Validator validator;
    valijson::ValidationResults results;
    if (validator.validate(publishedSchema(), valijson::adapters::QtJsonAdapter(document.object()), &results))
        return {};
    QString faults;
    valijson::ValidationResults::Error error;
    while (results.popError(error))
        faults += QString::fromStdString(std::accumulate(error.context.begin(), error.context.end(), std::string()) +
                                         ": " + error.description) +
                  u'\n';
    return faults;
}

QJsonArray jsonEntries(const QByteArray& json)
{
    const QString faults = schemaViolations(json);
    EXPECT_TRUE(faults.isEmpty()) << faults.toStdString() << json.left(2000).toStdString();
    const QJsonObject envelope = QJsonDocument::fromJson(json).object();
    return envelope
        .value(envelope.contains(QStringLiteral("files")) ? QStringLiteral("files") : QStringLiteral("documents"))
        .toArray();
}

} // namespace quillon::test
