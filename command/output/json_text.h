#ifndef OUTPUT_JSON_TEXT_H
#define OUTPUT_JSON_TEXT_H

#include <string>
#include <string_view>

#include "output/document.h"
#include "output/field.h"

namespace command {

/// Builds JSON text piece by piece, so that a long document need not be in memory as a whole.
///
/// The text is ASCII: other characters become \uNNNN, so that none steers a terminal. Bytes that
/// are not UTF-8 become U+FFFD. A member with such bytes is followed by one with "_raw" behind its
/// key, which holds the text as printableWord writes it, with nothing lost:
///
///     "name": "/dev/sd\ufffd", "name_raw": "/dev/sd\\xff"
class JsonText {
public:
    /// indented: two blanks for each level. line: all on one line.
    enum class Layout { indented, line };

    explicit JsonText(Layout layout) : m_isIndented(layout == Layout::indented) {}

    void beginRecord() { begin('{'); }
    void endRecord() { end('}'); }
    void beginList() { begin('['); }
    void endList() { end(']'); }

    /// The key of the value that comes next in a record.
    void key(std::string_view key);

    void add(const Field& field);
    void add(const Document& document);
    void add(const Document::List& list);
    void add(const Document::Record& record);

    /// A member of a record, with its "_raw" member where that is needed.
    void addMember(std::string_view key, const Field& field);
    void addMember(std::string_view key, const Document& document);

    /// Ends the line.
    void endLine() { m_text += '\n'; }

    /// What has been built since the last `clear`.
    const std::string& text() const { return m_text; }

    /// Forgets the text, which the caller has written. The levels stay open.
    void clear() { m_text.clear(); }

private:
    struct Adder;

    void begin(char bracket);
    void end(char bracket);
    void separate();
    void addLineBreak();
    void addText(std::string_view text);
    void addEscaped(char32_t code);
    void addSeconds(Seconds seconds);
    void addStep(const Step& step);

    bool m_isIndented;
    bool m_isFirst = true;   // this level has no element yet
    bool m_hasKey = false;   // the key of the next value is written
    std::size_t m_depth = 0; // the number of open levels
    std::string m_text;
};

/// The document on one line, with its line end.
std::string jsonLine(const Document& document);

} // namespace command

#endif
