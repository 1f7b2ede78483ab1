#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <cstdint>
#include <random>
#include <utility>

// Generators of hostile input for the readers: damaged and malicious archives, XML parts,
// property lists and file names. Every generator is driven by one seeded engine, so a failing
// case can be made again from its seed and index.
namespace quillon::hostile {

// One generated file: what it tries (for the failure message), its name and its bytes.
struct Case {
    QString what;
    QByteArray name;
    QByteArray bytes;
};

// One zip entry, stored (not compressed); a zip can hold two of the same name.
struct ZipEntry {
    QByteArray name;
    QByteArray data;
};

// A zip archive of `entries` as a zip tool writes it.
QByteArray zipArchive(const QList<ZipEntry>& entries);

class Generator {
public:
    explicit Generator(std::uint32_t seed) : m_engine(seed) {}

    // A number in [0, bound).
    int below(int bound) { return std::uniform_int_distribution<int>(0, bound - 1)(m_engine); }
    QByteArray randomBytes(int count);
    // `bytes` with a few bytes overwritten, cut short or doubled.
    QByteArray mutated(QByteArray bytes);

    // IDML packages: zip-slip and absolute entry names, duplicate entries, entity bombs, very deep
    // and very large XML, truncated archives and random damage to a sound one.
    QList<Case> archives(int count);
    // XML parts on their own (the same damage, outside a zip).
    QList<Case> parts(int count);
    // Presets and other property lists: values of the wrong type, binary garbage, damaged binary
    // plists, deep nesting, numbers out of range, entities.
    QList<Case> presets(int count);
    // File names: control characters, bytes that are not UTF-8, very long names, a leading dash.
    QList<QByteArray> names(int count);

private:
    QByteArray part();
    QByteArray preset();
    std::mt19937 m_engine;
};

} // namespace quillon::hostile
