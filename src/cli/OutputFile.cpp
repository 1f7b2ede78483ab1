#include "cli/OutputFile.h"

#include "app/RegularFile.h"
#include "cli/Commands.h"
#include "cli/Interruption.h"
#include "cli/TerminalText.h"

#include <QFileInfo>

#include <iostream>
#include <ostream>
#include <streambuf>
#include <vector>

namespace quillon::cli {

namespace {

// Hands what is written to the file's writer in pieces of at most its buffer's size.
class ChunkBuffer : public std::streambuf {
public:
    explicit ChunkBuffer(const app::ChunkWriter& write) : m_write(write), m_buffer(64 * 1024)
    {
        setp(m_buffer.data(), m_buffer.data() + m_buffer.size());
    }

protected:
    int sync() override
    {
        const bool ok = m_write(QByteArrayView(pbase(), pptr() - pbase()));
        setp(m_buffer.data(), m_buffer.data() + m_buffer.size());
        return ok ? 0 : -1;
    }

    int_type overflow(int_type c) override
    {
        if (sync() != 0)
            return traits_type::eof();
        if (!traits_type::eq_int_type(c, traits_type::eof())) {
            *pptr() = traits_type::to_char_type(c);
            pbump(1);
        }
        return traits_type::not_eof(c);
    }

private:
    const app::ChunkWriter& m_write;
    std::vector<char> m_buffer;
};

} // namespace

OutputRun runIntoFile(const QString& path, const std::function<int(std::ostream& stream)>& run)
{
    OutputRun result;
    result.written = app::writeFileReplacing(path, [&](const app::ChunkWriter& write) {
        ChunkBuffer buffer(write);
        std::ostream stream(&buffer);
        result.status = run(stream);
        stream.flush();
        if (Interruption::requested())
            return app::Status(app::makeError(QStringLiteral("was left as it was: the run was interrupted"), path));
        return app::Status();
    });
    return result;
}

void addOutputOptions(CLI::App& command, OutputOptions& options)
{
    command
        .add_option("--output", options.file,
                    "Write the results in the chosen format to this file (replaced when it exists, and only by a "
                    "complete output); a summary, where the command has one, still goes to the terminal")
        ->check(nonEmpty("a file name"));
    command.add_flag("--quiet", options.quiet, "Print nothing but errors (the exit status still tells the result)");
}

int runWithOutput(const OutputOptions& options, const char* command,
                  const std::function<int(const ResultStream& out)>& run)
{
    if (options.file.empty()) {
        std::ostream discard(nullptr); // --quiet: the results go nowhere
        return run({options.quiet ? discard : std::cout, false, options.quiet});
    }
    const QString path = QFileInfo(app::pathFromLocalBytes(options.file)).absoluteFilePath();
    const OutputRun done = runIntoFile(path, [&](std::ostream& stream) { return run({stream, true, options.quiet}); });
    if (Interruption::requested())
        return Interruption::exitStatus();
    if (!done.written) {
        std::cerr << "quillon " << command << ": " << printableText(done.written.error().text()) << std::endl;
        return kExitFailure;
    }
    return done.status;
}

} // namespace quillon::cli
