// A small driver for the fuzz targets where libFuzzer is not at hand (builds with GCC): it runs
// every input file once, then a bounded number of random mutations of them, with a fixed seed so
// that a failure can be repeated.
//
//   fuzz_<reader> [--runs=N] [--seed=S] [--max-len=BYTES] FILE_OR_FOLDER...
#include <QByteArray>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QString>

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
    std::vector<QString> inputs;
};

bool parseFlag(const QString& argument, const char* name, long& value)
{
    const QString prefix = QStringLiteral("--%1=").arg(QLatin1String(name));
    if (!argument.startsWith(prefix))
        return false;
    value = argument.mid(prefix.size()).toLong();
    return true;
}

Options parse(int argc, char** argv)
{
    Options options;
    for (int i = 1; i < argc; ++i) {
        const QString argument = QString::fromLocal8Bit(argv[i]);
        long value = 0;
        if (parseFlag(argument, "runs", value))
            options.runs = value;
        else if (parseFlag(argument, "seed", value))
            options.seed = unsigned(value);
        else if (parseFlag(argument, "max-len", value))
            options.maxLength = value;
        else
            options.inputs.push_back(argument);
    }
    return options;
}

std::vector<QByteArray> readInputs(const Options& options)
{
    std::vector<QByteArray> corpus;
    auto add = [&](const QString& path) {
        QFile file(path);
        if (file.open(QIODevice::ReadOnly))
            corpus.push_back(file.read(options.maxLength));
    };
    for (const QString& input : options.inputs) {
        if (QFileInfo(input).isDir()) {
            QDirIterator it(input, QDir::Files, QDirIterator::Subdirectories);
            while (it.hasNext())
                add(it.next());
        } else {
            add(input);
        }
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
