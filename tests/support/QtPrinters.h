#pragma once

#include <QString>
#include <QVariant>

#include <ostream>

// Readable Qt values in test failure messages.
inline void PrintTo(const QString& text, std::ostream* out)
{
    *out << '"' << text.toStdString() << '"';
}

inline void PrintTo(const QVariant& value, std::ostream* out)
{
    *out << value.typeName() << '(' << value.toString().toStdString() << ')';
}
