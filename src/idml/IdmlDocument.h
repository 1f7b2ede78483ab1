#pragma once

#include "app/ParallelFor.h"
#include "app/Result.h"
#include "idml/XmlPart.h"

#include <QString>
#include <QStringList>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

#include <pugixml.hpp>

namespace quillon::app {
class CancelFlag;
}

namespace quillon::idml {

class IdmlArchive;
class IdmlDocument;

// One reader of the parts in a pass that several readers share, so that a document too large to
// keep its parts is still parsed once for all of them.
class PartVisitor {
public:
    virtual ~PartVisitor() = default;
    // The parts it reads, in the order it wants them.
    virtual QStringList partNames(const IdmlDocument& document) const = 0;
    // One of its parts, parsed, or why it cannot be read; each once, in the pass's order. The
    // readers of a pass walk side by side, each on one thread at a time but not necessarily the
    // caller's: a reader keeps its state to itself.
    virtual void visit(const QString& name, const app::Result<std::shared_ptr<const XmlPart>>& part) = 0;
};

// The parts of one IDML package as its designmap.xml lists them, read from the archive in memory
// or from a package unpacked into a folder, and each parsed at most once however many readers ask
// for it. Readers on several threads may ask at once; a part is parsed by the first to ask and
// shared with the others. A part that cannot be read gives, to every reader, the same error naming
// it ("Stories/Story_u1a.xml: not readable XML at byte 14").
class IdmlDocument {
public:
    // The package of the IDML file at `idmlPath`, repaired in a scratch folder of `workFolder` when
    // it is damaged (the folder lives as long as the document). Errors name the file.
    static app::Result<std::shared_ptr<IdmlDocument>> open(const QString& idmlPath, const QString& workFolder,
                                                           const app::CancelFlag* cancel = nullptr);
    // The package of an opened archive, which should have passed checkIdmlStructure.
    static app::Result<std::shared_ptr<IdmlDocument>> fromArchive(IdmlArchive archive);
    // The package unpacked into `folder`. Fails, naming the file, when the folder or its
    // designmap.xml is missing or broken, or when the map names a part outside the folder.
    static app::Result<std::shared_ptr<IdmlDocument>> fromFolder(const QString& folder);

    ~IdmlDocument();
    IdmlDocument(const IdmlDocument&) = delete;
    IdmlDocument& operator=(const IdmlDocument&) = delete;

    // The document named in messages: the IDML file, or the unpacked folder.
    const QString& name() const { return m_name; }
    // Read from a copy the zip tool repaired.
    bool wasRepaired() const { return m_repaired; }
    const pugi::xml_document& designmap() const { return m_designmap.document(); }

    // Part names ("Spreads/Spread_u1.xml") in the designmap's order.
    const QStringList& masterSpreads() const { return m_masterSpreads; }
    const QStringList& spreads() const { return m_spreads; }
    const QStringList& stories() const { return m_stories; }
    // Every part file in the "MasterSpreads", "Spreads" and "Stories" folders, listed or not, hidden
    // ones skipped, in byte order of their file names (the order a Mac volume lists a folder in):
    // what the link analysis and the record read.
    const QStringList& masterSpreadFiles() const { return m_masterSpreadFiles; }
    const QStringList& spreadFiles() const { return m_spreadFiles; }
    const QStringList& storyFiles() const { return m_storyFiles; }
    // The resource parts; empty when the designmap lists none.
    const QString& graphic() const { return m_graphic; }
    const QString& fonts() const { return m_fonts; }
    const QString& styles() const { return m_styles; }
    const QString& preferences() const { return m_preferences; }

    // The part parsed, or why it cannot be read. A name the designmap does not list is not read.
    app::Result<std::shared_ptr<const XmlPart>> part(const QString& name) const;
    // The part's text as stored, unparsed, or why it cannot be read.
    app::Result<QByteArray> partText(const QString& name) const;
    // Whether the parts stay parsed for the next reader once read (see setKeptTextLimit).
    bool keepsParts() const { return m_partTextBytes <= m_keptLimit; }
    // Calls `visit` with each name in order, on the calling thread, having parsed the parts a window
    // at a time on several threads: within `visit`, part() hands out the window's parts without
    // parsing them again, kept or not. Each part is parsed once however large the document, and
    // the parts not kept go when their window has been visited. Stops early when cancelled.
    void forEachPart(const QStringList& names, const app::CancelFlag* cancel,
                     const std::function<void(const QString& name)>& visit) const;
    // One pass for several readers: the parts of the first visitor in its order, then those of the
    // next it did not name, and so on; each visitor is handed the parts it named, the visitors of a
    // window side by side on several threads. Stops early when cancelled.
    void visitParts(const std::vector<PartVisitor*>& visitors, const app::CancelFlag* cancel) const;
    // How much part text (the archive's uncompressed sizes) one window holds at most, unless a
    // single part is larger.
    static constexpr qint64 kWindowTextBytes = qint64(24) << 20;
    // Below this much text a window is parsed and visited on the calling thread alone: starting
    // a thread costs more than it saves.
    static constexpr qint64 kTextBytesWorthAThread = qint64(512) << 10;
    // Frees the parsed parts; asked again, they are parsed again.
    void release(const QStringList& names) const;
    // How much part text the document keeps parsed for the next reader. When the text of all its
    // parts together is more, none is kept: each reader holds a part as long as it needs it and
    // the next parses it again. A document of ordinary size is parsed once, a huge one in bounded
    // memory (a part's tree takes some three times its text, a kept share of a huge document would
    // sit beside everything the preflight builds from the rest).
    void setKeptTextLimit(qint64 bytes) { m_keptLimit = bytes; }
    static constexpr qint64 kDefaultKeptTextLimit = qint64(160) << 20;
    // How many times parts were parsed, all parts together.
    int parseCount() const { return m_parses.load(); }

private:
    struct Source;
    struct Slot;
    IdmlDocument(QString name, std::unique_ptr<Source> source);
    app::Status readDesignmap();
    Slot* slot(const QString& name) const;
    void addSlot(const QString& name);
    // Parses `names` a window at a time on several threads and hands each window's index range to
    // `visit` on the calling thread, with how far work on that window may spread; see forEachPart.
    using WindowVisit = std::function<void(qsizetype begin, qsizetype end, const app::ParallelOptions& spread)>;
    void forEachWindow(const QStringList& names, const app::CancelFlag* cancel, const WindowVisit& visit) const;
    void listPartFiles();
    qint64 partBytes(const QString& name) const;

    QString m_name;
    bool m_repaired = false;
    std::unique_ptr<Source> m_source;
    XmlPart m_designmap;
    QStringList m_masterSpreads;
    QStringList m_spreads;
    QStringList m_stories;
    QStringList m_masterSpreadFiles;
    QStringList m_spreadFiles;
    QStringList m_storyFiles;
    QString m_graphic;
    QString m_fonts;
    QString m_styles;
    QString m_preferences;
    std::vector<std::unique_ptr<Slot>> m_slots;
    mutable std::atomic<int> m_parses{0};
    // The size of the kept parts' text: a part is kept when it fits.
    bool keep(Slot* slot, qint64 bytes) const;
    void forget(Slot* slot) const;
    mutable std::mutex m_keptMutex;
    mutable qint64 m_keptBytes = 0;
    qint64 m_partTextBytes = 0; // all the parts' text together
    qint64 m_keptLimit = kDefaultKeptTextLimit;
};

// The names in byte order of their UTF-8 file names (the order a Mac volume lists a folder in).
QStringList inFileNameOrder(QStringList partNames);

} // namespace quillon::idml
