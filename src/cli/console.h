// The two outputs of the program. Results go to standard output, everything else to standard error,
// one line each, where at most one line of progress stands at the bottom of a terminal. Colours
// only to a terminal, and not where NO_COLOR is set. Main thread.
#pragma once

#include <QString>

#include <cstdio>

enum class Colour { Plain, Bold, Good, Bad, Warning };

class Console
{
public:
    // The streams are not owned.
    Console(std::FILE* outStream, std::FILE* errStream);

    // Text with its line ends.
    void print(const QString& text);
    void printBytes(const QByteArray& bytes);
    // "notchbench-cli: TEXT", with question marks for control characters.
    void message(const QString& text);
    void warn(const QString& text);

    // As it is printed: with colour, or as it came.
    QString painted(const QString& text, Colour colour) const;

    bool showsProgress() const { return errIsTerminal; }
    // Takes the place of the former one; empty for none.
    void setProgress(const QString& line);

    // Whether standard output has taken everything so far.
    bool isWhole();
    // Whether that wasn't so because the reader of its pipe has gone.
    bool hasLostReader() const { return lostReader; }

private:
    void tell(const QString& kind, const QString& text);
    void writeError(const QString& text);

    std::FILE* out;
    std::FILE* err;
    bool errIsTerminal;
    bool outHasColour;
    bool errHasColour;
    bool hasProgress = false;
    bool allTaken = true;
    bool lostReader = false;
};
