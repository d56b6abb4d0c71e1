#include "cli/console.h"

#include <algorithm>
#include <cerrno>

#include <unistd.h>

namespace {

bool isTerminal(std::FILE* stream)
{
    return isatty(fileno(stream)) != 0;
}

bool wantsColour(std::FILE* stream)
{
    return isTerminal(stream) && qEnvironmentVariableIsEmpty("NO_COLOR") &&
           qgetenv("TERM") != "dumb";
}

const char* codeOf(Colour colour)
{
    switch (colour) {
    case Colour::Plain:
        break;
    case Colour::Bold:
        return "1";
    case Colour::Good:
        return "32";
    case Colour::Bad:
        return "1;31";
    case Colour::Warning:
        return "33";
    }
    return "0";
}

// Names of files and answers of instruments may hold anything, what moves a cursor too.
QString inOneLine(QString text)
{
    const auto isControl = [](QChar c) { return c.category() == QChar::Other_Control; };
    std::replace_if(text.begin(), text.end(), isControl, QChar('?'));
    return text;
}

QString inColour(const QString& text, Colour colour)
{
    return "\033[" + QLatin1String(codeOf(colour)) + 'm' + text + "\033[0m";
}

} // namespace

Console::Console(std::FILE* outStream, std::FILE* errStream)
    : out(outStream),
      err(errStream),
      errIsTerminal(isTerminal(errStream)),
      outHasColour(wantsColour(outStream)),
      errHasColour(wantsColour(errStream))
{
}

void Console::print(const QString& text)
{
    printBytes(text.toLocal8Bit());
}

void Console::printBytes(const QByteArray& bytes)
{
    setProgress({});
    const auto size = static_cast<std::size_t>(bytes.size());
    allTaken = std::fwrite(bytes.constData(), 1, size, out) == size && allTaken;
    allTaken = std::fflush(out) == 0 && allTaken; // a program may be waiting at the other end
    lostReader = lostReader || (!allTaken && errno == EPIPE);
}

void Console::message(const QString& text)
{
    tell({}, text);
}

void Console::warn(const QString& text)
{
    const QString word = QStringLiteral("warning:");
    tell((errHasColour ? inColour(word, Colour::Warning) : word) + ' ', text);
}

void Console::tell(const QString& kind, const QString& text)
{
    setProgress({});
    writeError("notchbench-cli: " + kind + inOneLine(text) + '\n');
}

QString Console::painted(const QString& text, Colour colour) const
{
    return outHasColour && colour != Colour::Plain ? inColour(text, colour) : text;
}

void Console::setProgress(const QString& line)
{
    if (!errIsTerminal || (line.isEmpty() && !hasProgress)) {
        return;
    }
    writeError("\r\033[K" + line); // to the line's begin, and all behind it cleared
    hasProgress = !line.isEmpty();
}

bool Console::isWhole()
{
    return allTaken && std::ferror(out) == 0;
}

void Console::writeError(const QString& text)
{
    const QByteArray bytes = text.toLocal8Bit();
    std::fwrite(bytes.constData(), 1, static_cast<std::size_t>(bytes.size()), err);
    std::fflush(err);
}
