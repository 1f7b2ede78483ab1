#include "host/IdmlRelinking.h"

#include "idml/IdmlArchive.h"
#include "idml/IdmlArchiveRewrite.h"
#include "links/LinkPaths.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>

namespace quillon::host {

using app::Result;

namespace {

bool isXmlSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

// An attribute value as the XML means it.
QString decodedAttribute(QByteArrayView raw)
{
    QByteArray out;
    out.reserve(raw.size());
    for (qsizetype i = 0; i < raw.size(); ++i) {
        const qsizetype end = raw[i] == '&' ? raw.indexOf(';', i) : -1;
        if (end < 0) {
            out += raw[i];
            continue;
        }
        const QByteArrayView name = raw.sliced(i + 1, end - i - 1);
        static const QHash<QByteArray, char> named{
            {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
        if (const auto known = named.constFind(name.toByteArray()); known != named.cend()) {
            out += *known;
        } else if (name.startsWith('#')) {
            bool ok = false;
            const uint code = name.startsWith("#x") ? name.sliced(2).toUInt(&ok, 16) : name.sliced(1).toUInt(&ok, 10);
            if (!ok)
                continue;
            const char32_t character = code;
            out += QString::fromUcs4(&character, 1).toUtf8();
        } else {
            out += raw.sliced(i, end - i + 1);
        }
        i = end;
    }
    return QString::fromUtf8(out);
}

QByteArray escapedAttribute(const QString& value)
{
    QByteArray out = value.toUtf8();
    out.replace('&', "&amp;").replace('<', "&lt;").replace('>', "&gt;").replace('"', "&quot;");
    return out;
}

// Where an attribute's value lies in the part.
struct ValueSpan {
    qsizetype begin = -1;
    qsizetype end = -1;
};

// Reads the attributes of the tag whose name ends at `pos`, up to its closing ">", keeping the
// two a link needs; quoted values may hold ">". Answers the position after the tag.
qsizetype readLinkTag(const QByteArray& part, qsizetype pos, ValueSpan& self, ValueSpan& uri)
{
    const qsizetype size = part.size();
    while (pos < size) {
        while (pos < size && isXmlSpace(part[pos]))
            ++pos;
        if (pos >= size || part[pos] == '>' || part[pos] == '/')
            break;
        const qsizetype nameStart = pos;
        while (pos < size && part[pos] != '=' && !isXmlSpace(part[pos]) && part[pos] != '>')
            ++pos;
        const QByteArrayView name(part.constData() + nameStart, pos - nameStart);
        while (pos < size && (isXmlSpace(part[pos]) || part[pos] == '='))
            ++pos;
        if (pos >= size || (part[pos] != '"' && part[pos] != '\''))
            break;
        const char quote = part[pos];
        const qsizetype valueEnd = part.indexOf(quote, pos + 1);
        if (valueEnd < 0)
            return size;
        if (name == "Self")
            self = {pos + 1, valueEnd};
        else if (name == "LinkResourceURI")
            uri = {pos + 1, valueEnd};
        pos = valueEnd + 1;
    }
    const qsizetype close = part.indexOf('>', pos);
    return close < 0 ? size : close + 1;
}

} // namespace

QByteArray retargetLinksInPart(const QByteArray& part, const LinkRetarget& retarget, int& changed)
{
    QByteArray out;
    qsizetype copied = 0;
    qsizetype pos = 0;
    const auto skipPast = [&](const char* opening, const char* closing) {
        if (!QByteArrayView(part).sliced(pos).startsWith(opening))
            return false;
        const qsizetype end = part.indexOf(closing, pos);
        pos = end < 0 ? part.size() : end + qsizetype(qstrlen(closing));
        return true;
    };
    while ((pos = part.indexOf('<', pos)) >= 0) {
        // Comments and character data may hold "<Link" that is no element.
        if (skipPast("<!--", "-->") || skipPast("<![CDATA[", "]]>"))
            continue;
        constexpr qsizetype kNameLength = 5; // "<Link"
        if (!QByteArrayView(part).sliced(pos).startsWith("<Link") || pos + kNameLength >= part.size() ||
            !(isXmlSpace(part[pos + kNameLength]) || part[pos + kNameLength] == '/' ||
              part[pos + kNameLength] == '>')) {
            ++pos;
            continue;
        }
        ValueSpan self;
        ValueSpan uri;
        const qsizetype after = readLinkTag(part, pos + kNameLength, self, uri);
        if (uri.begin >= 0) {
            const auto slice = [&](const ValueSpan& span) {
                return span.begin < 0
                           ? QString()
                           : decodedAttribute(QByteArrayView(part).sliced(span.begin, span.end - span.begin));
            };
            const IdmlLink link{slice(self), slice(uri)};
            if (const std::optional<QString> path = retarget(link)) {
                const QString newUri = links::fileUriFromPath(*path);
                if (newUri != link.uri) {
                    out += QByteArrayView(part).sliced(copied, uri.begin - copied);
                    out += escapedAttribute(newUri);
                    copied = uri.end;
                    ++changed;
                }
            }
        }
        pos = after;
    }
    if (copied == 0)
        return part;
    out += QByteArrayView(part).sliced(copied);
    return out;
}

Result<int> retargetIdmlLinks(const QString& idmlPath, const LinkRetarget& retarget)
{
    Result<idml::IdmlArchive> archive = idml::IdmlArchive::open(idmlPath);
    if (!archive)
        return archive.error();
    if (app::Status safe = archive->checkEntriesAreSafe(); !safe)
        return safe.error();
    QHash<quint64, QByteArray> replaced;
    int changed = 0;
    for (const idml::IdmlArchive::Entry& entry : archive->entries()) {
        const bool linkPart =
            (entry.path.startsWith(QLatin1String("MasterSpreads/")) ||
             entry.path.startsWith(QLatin1String("Spreads/")) || entry.path.startsWith(QLatin1String("Stories/"))) &&
            entry.path.endsWith(QLatin1String(".xml"));
        if (!linkPart)
            continue;
        Result<QByteArray> bytes = archive->readEntry(entry.path);
        if (!bytes)
            return bytes.error();
        const int before = changed;
        QByteArray rewritten = retargetLinksInPart(*bytes, retarget, changed);
        if (changed != before)
            replaced.insert(entry.index, std::move(rewritten));
    }
    if (replaced.isEmpty())
        return 0;
    if (app::Status written = idml::rewriteArchiveEntries(idmlPath, replaced); !written)
        return written.error();
    return changed;
}

Result<int> relinkIdmlToFolder(const QString& idmlPath, const QString& linksFolder)
{
    const QDir folder(QFileInfo(linksFolder).absoluteFilePath());
    if (!folder.exists())
        return app::makeError(QStringLiteral("the links folder does not exist"), linksFolder);
    QHash<QString, QString> byName;
    QHash<QString, QString> byFoldedName; // empty when two names fold alike
    for (const QString& name : folder.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
        byName.insert(name, name);
        const QString folded = name.toCaseFolded();
        byFoldedName.insert(folded, byFoldedName.contains(folded) ? QString() : name);
    }
    const QString documentFolder = QFileInfo(idmlPath).absolutePath();
    return retargetIdmlLinks(idmlPath, [&](const IdmlLink& link) -> std::optional<QString> {
        const QString name = QFileInfo(links::pathFromFileUri(link.uri, documentFolder)).fileName();
        QString found = byName.value(name);
        if (found.isEmpty())
            found = byFoldedName.value(name.toCaseFolded());
        if (name.isEmpty() || found.isEmpty())
            return std::nullopt;
        return folder.absoluteFilePath(found);
    });
}

} // namespace quillon::host
