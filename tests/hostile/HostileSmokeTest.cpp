// A fixed-seed run of the hostile-input generators against the public reading entry points. Each
// case must end in a value or in an error that names the file: never a crash, a hang or an
// error that leaves the user guessing which file it was.
#include "hostile/HostileInput.h"

#include "app/Alerts.h"
#include "app/PropertyList.h"
#include "app/RegularFile.h"
#include "app/XmlFile.h"
#include "fileinspect/FileFacts.h"
#include "host/OfflineIdmlHost.h"
#include "preflight/IdmlCreator.h"
#include "results/Presets.h"

#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

using namespace quillon;
using namespace quillon::host;
using namespace quillon::preflight;

namespace {

constexpr std::uint32_t kSeed = 20240611;

// Writes bytes under a raw byte name (which need not be UTF-8) and gives the path.
QString writeRaw(const QString& folder, const QByteArray& name, const QByteArray& bytes)
{
    const QByteArray path = app::localBytesOfPath(folder) + '/' + name;
    const int fd = ::open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    EXPECT_GE(fd, 0) << path.toStdString();
    if (fd >= 0) {
        EXPECT_EQ(::write(fd, bytes.constData(), size_t(bytes.size())), bytes.size());
        ::close(fd);
    }
    return app::pathFromLocalBytes(path);
}

// The error names the file: its path, or at least its name.
template <typename T> void expectValueOrNamedError(const T& result, const QString& path, const QString& what)
{
    if (result.ok())
        return;
    const QString text = result.error().text();
    EXPECT_TRUE(text.contains(app::displayPath(QFileInfo(path).fileName())))
        << what.toStdString() << ": " << text.toStdString();
    EXPECT_FALSE(result.error().message.isEmpty()) << what.toStdString();
}

} // namespace

TEST(HostileInput, PresetsAndPropertyListsEndInAValueOrANamedError)
{
    hostile::Generator generator(kSeed);
    QTemporaryDir folder;
    const QList<hostile::Case> cases = generator.presets(120);
    for (const hostile::Case& c : cases) {
        const QString path = writeRaw(folder.path(), c.name, c.bytes);
        expectValueOrNamedError(app::readPropertyListDictionary(path), path, c.what);
    }
    // The presets table reads them all as a folder of presets, skipping what it cannot use.
    results::QNPresetsTable table(folder.path());
    (void)table.loadPresets();
    EXPECT_FALSE(table.presetNames().isEmpty());
}

TEST(HostileInput, XmlPartsEndInAValueOrANamedError)
{
    hostile::Generator generator(kSeed + 1);
    QTemporaryDir folder;
    for (const hostile::Case& c : generator.parts(60)) {
        const QString path = writeRaw(folder.path(), c.name, c.bytes);
        expectValueOrNamedError(app::loadXmlFile(path), path, c.what);
        QFile::remove(path);
    }
}

TEST(HostileInput, ArchivesOpenOrFailNamingTheDocument)
{
    hostile::Generator generator(kSeed + 2);
    QTemporaryDir folder;
    QTemporaryDir work;
    const QList<hostile::Case> cases = generator.archives(40);
    for (qsizetype i = 0; i < cases.size(); ++i) {
        const hostile::Case& c = cases[i];
        const QString path = writeRaw(folder.path(), QByteArray::number(i) + c.name, c.bytes);
        host::OfflineIdmlHost host;
        host.setWorkFolder(work.path());
        ASSERT_TRUE(host.openDocument(path, true).ok()) << c.what.toStdString();
        expectValueOrNamedError(host.pathsAndNameOfDocument(host::DocumentReference::active()), path, c.what);
        preflight::QNIDMLCreator creator(host);
        creator.setWorkFolder(work.path());
        const auto unpacked = creator.processInDesignFileAtPath(path);
        if (!unpacked) {
            EXPECT_TRUE(unpacked.error().text().contains(QFileInfo(path).fileName()))
                << c.what.toStdString() << ": " << unpacked.error().text().toStdString();
        }
        // Nothing lands outside the work folder, whatever the entry names said.
        EXPECT_FALSE(QFileInfo::exists(folder.path() + QStringLiteral("/escaped.xml"))) << c.what.toStdString();
        EXPECT_FALSE(QFileInfo::exists(QStringLiteral("/tmp/absolute.xml"))) << c.what.toStdString();
    }
}

TEST(HostileInput, HostileNamesAreReadAndNamedWithTheirBytes)
{
    hostile::Generator generator(kSeed + 3);
    QTemporaryDir folder;
    const QByteArray png = QByteArray::fromBase64("iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAAAAAA6fptVAAAACklEQVR4nGNgAAAAAgAB"
                                                  "SK+kcQAAAABJRU5ErkJggg==");
    for (const QByteArray& name : generator.names(80)) {
        const QString image = writeRaw(folder.path(), name + ".png", png);
        const fileinspect::FileFacts facts = fileinspect::inspectFile(image);
        EXPECT_TRUE(facts.error.isEmpty())
            << app::displayPath(image).toStdString() << ": " << facts.error.toStdString();
        EXPECT_EQ(facts.pixelWidth, 1) << app::displayPath(image).toStdString();

        const QString preset = writeRaw(folder.path(), name + ".qnfp", "<plist><dict/></plist>");
        EXPECT_TRUE(app::readPropertyListDictionary(preset).ok()) << app::displayPath(preset).toStdString();
        const QString missing = app::pathFromLocalBytes(app::localBytesOfPath(folder.path()) + "/no" + name);
        const auto error = app::readPropertyListFile(missing);
        ASSERT_FALSE(error.ok());
        EXPECT_TRUE(error.error().text().contains(app::displayPath(missing)));
        EXPECT_TRUE(error.error().text().contains(QLatin1String("does not exist")));
    }
}
