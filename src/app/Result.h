#pragma once

#include <QString>

#include <optional>
#include <utility>
#include <variant>

namespace quillon::app {

// What went wrong, for the user: the message, the file it concerns and where in it
// (a line, an offset, an entry name). Empty parts are simply not shown.
struct Error {
    QString message;
    QString file;
    QString where;

    // "file (where): message", leaving out what is not known.
    QString text() const;
};

// A value or an Error. No exceptions cross module boundaries; third-party exceptions are
// caught at the call and turned into one of these.
template <typename T> class [[nodiscard]] Result {
public:
    Result(T value) : m_data(std::move(value)) {}
    Result(Error error) : m_data(std::move(error)) {}

    bool ok() const { return m_data.index() == 0; }
    explicit operator bool() const { return ok(); }

    T& value() & { return std::get<0>(m_data); }
    const T& value() const& { return std::get<0>(m_data); }
    T&& value() && { return std::get<0>(std::move(m_data)); }
    T valueOr(T fallback) const { return ok() ? value() : std::move(fallback); }

    const Error& error() const { return std::get<1>(m_data); }

    T* operator->() { return &value(); }
    const T* operator->() const { return &value(); }
    T& operator*() & { return value(); }
    const T& operator*() const& { return value(); }

private:
    std::variant<T, Error> m_data;
};

// A success without a value, or an Error.
class [[nodiscard]] Status {
public:
    Status() = default;
    Status(Error error) : m_error(std::move(error)) {}

    bool ok() const { return !m_error.has_value(); }
    explicit operator bool() const { return ok(); }
    const Error& error() const { return *m_error; }

private:
    std::optional<Error> m_error;
};

Error makeError(QString message, QString file = {}, QString where = {});

} // namespace quillon::app
