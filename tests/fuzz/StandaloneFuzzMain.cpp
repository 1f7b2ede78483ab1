// A small driver for the fuzz targets where libFuzzer is not at hand (builds with GCC): it runs
// every input file once, then a bounded number of random mutations of them, with a fixed seed so
// that a failure can be repeated.
//
//   fuzz_<reader> [--runs=N] [--seed=S] [--max-len=BYTES] FILE_OR_FOLDER...
#include <QByteArray>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QStringList>

#include <cstdint>
#include <cstdio>
#include <random>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

struct Options {
    long runs = 1000;
    unsigned seed = 1;
    qsizetype maxLength = 64 * 1024;
    QStringList inputs;
};

Options parse(int argc, char** argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        const QString value = argument.section(u'=', 1);
        if (argument.startsWith(QLatin1String("--runs=")))
            options.runs = value.toLong();
        else if (argument.startsWith(QLatin1String("--seed=")))
            options.seed = value.toUInt();
        else if (argument.startsWith(QLatin1String("--max-len=")))
            options.maxLength = value.toLongLong();
        else
            options.inputs << argument;
    }
    return options;
}

// The head of every input file, and of every file under an input folder.
std::vector<QByteArray> readInputs(const Options& options)
{
    QStringList paths;
    for (const QString& input : options.inputs) {
        if (!QFileInfo(input).isDir())
            paths << input;
        for (QDirIterator it(input, QDir::Files, QDirIterator::Subdirectories); it.hasNext();)
            paths << it.next();
    }
    std::vector<QByteArray> corpus;
    for (const QString& path : paths) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            corpus.push_back(file.read(options.maxLength));
    }
    if (corpus.empty())
        corpus.emplace_back();
    return corpus;
}

// One to four random changes: flipped bits, interesting bytes, cut, erased, repeated or inserted
// runs of bytes.
QByteArray mutate(QByteArray bytes, std::mt19937& random, qsizetype maxLength)
{
    auto pick = [&random](qsizetype bound) { return qsizetype(random() % quint64(std::max<qsizetype>(bound, 1))); };
    static const char interesting[] = {'\0', '\x01', '\x7f', '\x80', '\xff', '%', '(', ')', '/', '\r', '\n', ' '};
    const int changes = 1 + int(random() % 4);
    for (int c = 0; c < changes; ++c) {
        const qsizetype at = pick(bytes.size() + 1);
        switch (random() % 6) {
        case 0:
            if (!bytes.isEmpty())
                bytes[pick(bytes.size())] ^= char(1 << (random() % 8));
            break;
        case 1:
            if (!bytes.isEmpty())
                bytes[pick(bytes.size())] = interesting[random() % sizeof interesting];
            break;
        case 2:
            bytes.truncate(at);
            break;
        case 3:
            bytes.remove(at, pick(64));
            break;
        case 4:
            bytes.insert(at, bytes.mid(pick(bytes.size()), pick(256)));
            break;
        default: {
            QByteArray noise(pick(16) + 1, '\0');
            for (char& b : noise)
                b = char(random());
            bytes.insert(at, noise);
        }
        }
    }
    return bytes.left(maxLength);
}

void run(const QByteArray& bytes)
{
    LLVMFuzzerTestOneInput(reinterpret_cast<const uint8_t*>(bytes.constData()), size_t(bytes.size()));
}

} // namespace

int main(int argc, char** argv)
{
    const Options options = parse(argc, argv);
    const std::vector<QByteArray> corpus = readInputs(options);
    for (const QByteArray& input : corpus)
        run(input);
    std::mt19937 random(options.seed);
    for (long i = 0; i < options.runs; ++i)
        run(mutate(corpus[random() % corpus.size()], random, options.maxLength));
    std::printf("%zu inputs and %ld mutations ran without a fault\n", corpus.size(), options.runs);
    return 0;
}
