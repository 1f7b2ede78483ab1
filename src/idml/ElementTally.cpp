#include "idml/ElementTally.h"

#include <algorithm>
#include <cstring>

namespace quillon::idml {

namespace {

// The parser's name characters: ASCII letters, '_', ':' and any byte of a multi-byte character
// start a name; digits, '-' and '.' may follow.
bool isNameStart(unsigned char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' || c >= 0x80;
}

bool isNameChar(unsigned char c)
{
    return isNameStart(c) || (c >= '0' && c <= '9') || c == '-' || c == '.';
}

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool isBlank(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), isSpace);
}

bool equalsIgnoringCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() &&
           std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) { return (x | 0x20) == (y | 0x20); });
}

class Scan {
public:
    Scan(std::string_view text, const std::vector<ElementQuery>& queries, const XmlPartLimits& limits)
        : m_text(text), m_queries(queries), m_limits(limits), m_counts(queries.size(), 0)
    {
    }

    std::optional<std::vector<qint64>> run()
    {
        if (std::memchr(m_text.data(), '\0', m_text.size()) ||
            std::count(m_text.begin(), m_text.end(), '<') > m_limits.maxMarkup ||
            std::count(m_text.begin(), m_text.end(), '=') > m_limits.maxAttributes || !skipDeclaration())
            return std::nullopt;
        bool rootSeen = false;
        while (m_at < m_text.size()) {
            const size_t open = m_text.find('<', m_at);
            const std::string_view text = m_text.substr(m_at, open == std::string_view::npos ? open : open - m_at);
            if (m_open.empty() && !isBlank(text))
                return std::nullopt; // text beside the root element
            if (open == std::string_view::npos)
                break;
            m_at = open + 1;
            if (peek() == '/') {
                ++m_at;
                if (m_open.empty() || name() != m_open.back() || !closeTag())
                    return std::nullopt;
                m_open.pop_back();
            } else {
                if (rootSeen && m_open.empty())
                    return std::nullopt; // a second root element
                rootSeen = true;
                if (!element())
                    return std::nullopt;
            }
        }
        if (!rootSeen || !m_open.empty())
            return std::nullopt;
        return std::move(m_counts);
    }

private:
    char peek() const { return m_at < m_text.size() ? m_text[m_at] : '\0'; }

    void skipSpace()
    {
        while (m_at < m_text.size() && isSpace(m_text[m_at]))
            ++m_at;
    }

    // The first line's declaration, when it names no encoding but UTF-8.
    bool skipDeclaration()
    {
        if (!m_text.starts_with("<?"))
            return !m_text.empty() && (m_text[0] == '<' || isSpace(m_text[0]));
        if (!m_text.starts_with("<?xml "))
            return false;
        const size_t end = m_text.find("?>");
        if (end == std::string_view::npos)
            return false;
        const std::string_view declaration = m_text.substr(0, end);
        if (const size_t encoding = declaration.find("encoding"); encoding != std::string_view::npos) {
            const std::string_view value = declaration.substr(encoding + 8);
            if (!equalsIgnoringCase(value.substr(0, 8), "=\"UTF-8\"") &&
                !equalsIgnoringCase(value.substr(0, 8), "='UTF-8'"))
                return false;
        }
        m_at = end + 2;
        return true;
    }

    // A name at the cursor; empty when none starts there.
    std::string_view name()
    {
        const size_t begin = m_at;
        if (m_at >= m_text.size() || !isNameStart(static_cast<unsigned char>(m_text[m_at])))
            return {};
        while (m_at < m_text.size() && isNameChar(static_cast<unsigned char>(m_text[m_at])))
            ++m_at;
        return m_text.substr(begin, m_at - begin);
    }

    bool closeTag()
    {
        skipSpace();
        if (peek() != '>')
            return false;
        ++m_at;
        return true;
    }

    // An element's start tag after its '<': its attributes read, the queries it answers counted.
    bool element()
    {
        const std::string_view elementName = name();
        if (elementName.empty())
            return false;
        std::vector<char>& answered = m_answered;
        std::vector<char>& attributeSeen = m_attributeSeen;
        answered.assign(m_queries.size(), 0);
        attributeSeen.assign(m_queries.size(), 0);
        for (size_t index = 0; index < m_queries.size(); ++index)
            answered[index] = m_queries[index].name == elementName && m_queries[index].attribute.empty();
        while (true) {
            const size_t before = m_at;
            skipSpace();
            if (m_text.substr(m_at).starts_with("/>")) {
                m_at += 2;
                break;
            }
            if (peek() == '>') {
                ++m_at;
                m_open.push_back(elementName);
                break;
            }
            if (m_at == before)
                return false; // attributes run together, or a character no tag holds
            const std::string_view attribute = name();
            if (attribute.empty())
                return false;
            skipSpace();
            if (peek() != '=')
                return false;
            ++m_at;
            skipSpace();
            const char quote = peek();
            if (quote != '"' && quote != '\'')
                return false;
            const size_t close = m_text.find(quote, m_at + 1);
            if (close == std::string_view::npos)
                return false;
            const std::string_view value = m_text.substr(m_at + 1, close - m_at - 1);
            if (value.find('<') != std::string_view::npos ||
                static_cast<qint64>(value.size()) > m_limits.maxAttributeBytes)
                return false;
            m_at = close + 1;
            for (size_t index = 0; index < m_queries.size(); ++index) {
                const ElementQuery& query = m_queries[index];
                if (query.name != elementName || query.attribute != attribute || attributeSeen[index])
                    continue;
                attributeSeen[index] = 1; // the first of that name is the one read
                if (value.substr(0, query.valuePrefix.size()).find('&') != std::string_view::npos)
                    return false;
                answered[index] = value.starts_with(query.valuePrefix);
            }
        }
        for (size_t index = 0; index < m_queries.size(); ++index)
            m_counts[index] += answered[index] ? 1 : 0;
        return true;
    }

    std::string_view m_text;
    const std::vector<ElementQuery>& m_queries;
    const XmlPartLimits& m_limits;
    std::vector<qint64> m_counts;
    std::vector<std::string_view> m_open;
    // Per start tag, kept here so that a tag costs no allocation.
    std::vector<char> m_answered;
    std::vector<char> m_attributeSeen;
    size_t m_at = 0;
};

} // namespace

std::optional<std::vector<qint64>> tallyElements(std::string_view text, const std::vector<ElementQuery>& queries,
                                                 const XmlPartLimits& limits)
{
    return Scan(text, queries, limits).run();
}

} // namespace quillon::idml
