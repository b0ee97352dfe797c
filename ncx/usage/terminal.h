#pragma once

#include <QString>

#include <memory>

class ProgressLine;

/// The two outputs of a command: answers on standard output, everything else on standard error. Each is coloured where
/// it is a terminal, unless NO_COLOR is set or the terminal knows no colours.
class Terminal
{
public:
    enum class Style
    {
        Plain,
        Strong,
        Faint,
        Bad,
        Doubtful,
        Good
    };

    Terminal();
    ~Terminal();
    Q_DISABLE_COPY_MOVE(Terminal)

    /// Writes a text and a line feed to standard output.
    void answer(const QString &text);
    /// The same without a line feed.
    void write(const QString &text);
    /// "ncx: " and a text, on standard error.
    void tell(const QString &text);
    /// The same with the word "error".
    void fail(const QString &text);
    /// Says what the program begins to do. On a terminal for errors that is shown once it takes more than a second,
    /// until it has something to say.
    void step(const QString &what);
    /// A text in a style of the answers, plain where these are not coloured.
    QString styled(Style style, const QString &text) const;

    /// Columns of the terminal; 80 where the answers go elsewhere.
    int width() const { return width_; }
    bool isInteractive() const { return errorsAreShown_; }
    /// False if some of the answers could not be written; the reason is told, unless their reader has gone.
    bool finish();

private:
    void endStep();

    bool answersAreColoured_;
    bool errorsAreColoured_;
    bool errorsAreShown_;
    int width_;
    std::unique_ptr<ProgressLine> progress_; ///< of a terminal
    int failure_ = 0;                        ///< errno of the first answer that could not be written
};
