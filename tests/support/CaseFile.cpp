#include "support/CaseFile.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace fs = std::filesystem;

namespace testsupport {

namespace {

const std::string workToken = "$PWD";

bool startsWith(const std::string& s, const std::string& head) { return s.compare(0, head.size(), head) == 0; }

bool nameChar(char c) { return std::isalnum(static_cast<unsigned char>(c)) || c == '_'; }

bool atWorkToken(const std::string& s, size_t i) {
    return s.compare(i, workToken.size(), workToken) == 0 && !nameChar(s[i + workToken.size()]);
}

int hexDigit(char c) {
    const char* at = c ? std::strchr("0123456789abcdef", std::tolower(static_cast<unsigned char>(c))) : nullptr;
    return at ? static_cast<int>(at - "0123456789abcdef") : -1;
}

std::string readFile(const std::string& path) {
    std::ifstream f(path, std::ios::binary);
    if (!f) throw std::runtime_error(path + ": can't be read");
    std::ostringstream s;
    s << f.rdbuf();
    return s.str();
}

// A word of a command line; quoted is the place in the word where quoting
// first began, npos for a plain word.
struct Word {
    std::string text;
    size_t quoted = std::string::npos;
    bool is(const char* plain) const { return quoted == std::string::npos && text == plain; }
};

class Parser {
public:
    Parser(CaseFile& target, const std::string& folder, const std::string& workDir)
        : target(target), folder(folder), workDir(workDir) {}
    void parse(const std::string& text);

private:
    enum Expected {
        NoExpectation,
        TextLine,
        Status
    };

    CaseFile& target;
    std::string folder, workDir;
    std::vector<std::string> lines;
    size_t at = 0;  // the line being read

    [[noreturn]] void fail(const std::string& problem) const {
        throw std::runtime_error(target.path + ":" + std::to_string(at + 1) + ": " + problem);
    }
    bool indented(size_t i) const { return i < lines.size() && startsWith(lines[i], "  "); }
    // The count of empty lines from line i on when an indented line follows
    // them (they belong to the block), else 0.
    size_t emptyInBlock(size_t i) const {
        size_t k = i;
        while (k < lines.size() && lines[k].empty()) ++k;
        return indented(k) ? k - i : 0;
    }
    std::string expand(const std::string& s) const;
    void unescape(const std::string& s, size_t& i, std::string& out) const;
    // Copies s from i up to the first unescaped stop, reading C escapes;
    // returns the place of stop (or the end).
    size_t decode(const std::string& s, size_t i, char stop, std::string& out) const;
    std::string text(std::string line) const;
    std::string hexBytes(const std::string& s) const;
    std::vector<Word> words(const std::string& s, std::string& tail, bool& hasTail) const;
    void fileStep(CaseStep& step, const std::string& kind, const std::string& rest);
    void runStep(CaseStep& step, const std::string& command);
    Expected expectation(CaseStep& step, const std::string& line, bool tail);
};

std::string Parser::expand(const std::string& s) const {
    std::string out;
    for (size_t i = 0; i < s.size();) {
        if (atWorkToken(s, i)) out += workDir, i += workToken.size();
        else out += s[i++];
    }
    return out;
}

// The C escape behind the backslash at s[i]; i moves past it.
void Parser::unescape(const std::string& s, size_t& i, std::string& out) const {
    static const char plain[] = "n\nt\tr\rb\bf\fv\va\ae\x1b\\\\''\"\"??";
    char c = i + 1 < s.size() ? s[i + 1] : 0;
    i += 2;
    for (const char* p = plain; c && *p; p += 2)
        if (c == p[0]) return void(out += p[1]);
    int value = 0, digits = 0, base = c == 'x' ? 16 : 8, d;
    if (c >= '0' && c <= '7') value = c - '0', digits = 1;
    else if (c != 'x') fail(c ? std::string("unknown escape \\") + c : "a backslash at the end of the text");
    for (; digits < (base == 16 ? 2 : 3) && i < s.size() && (d = hexDigit(s[i])) >= 0 && d < base; ++digits, ++i)
        value = value * base + d;
    if (digits == 0) fail("\\x without hex digits");
    out += static_cast<char>(value);
}

size_t Parser::decode(const std::string& s, size_t i, char stop, std::string& out) const {
    while (i < s.size() && s[i] != stop) {
        if (s[i] == '\\') unescape(s, i, out);
        else out += s[i++];
    }
    return i;
}

// A line of text: " (esc)" at its end reads C escapes, " (no-eol)" drops
// the line feed.
std::string Parser::text(std::string line) const {
    bool escaped = false, lineFeed = true;
    for (bool more = true; more;) {
        auto strip = [&line](const std::string& mark) {
            bool at = line.size() >= mark.size() && line.compare(line.size() - mark.size(), mark.size(), mark) == 0;
            if (at) line.resize(line.size() - mark.size());
            return at;
        };
        if (strip(" (esc)")) escaped = true;
        else if (strip(" (no-eol)")) lineFeed = false;
        else more = false;
    }
    std::string out;
    if (escaped) decode(line, 0, '\n', out);
    return expand(escaped ? out : line) + (lineFeed ? "\n" : "");
}

std::string Parser::hexBytes(const std::string& s) const {
    std::string out;
    for (size_t i = 0; i < s.size();) {
        if (s[i] == ' ') {
            ++i;
        } else if (s[i] == '"') {
            i = decode(s, i + 1, '"', out);
            if (i++ >= s.size()) fail("a text without its closing quote");
        } else if (i + 1 < s.size() && hexDigit(s[i]) >= 0 && hexDigit(s[i + 1]) >= 0) {
            out += static_cast<char>(hexDigit(s[i]) * 16 + hexDigit(s[i + 1]));
            i += 2;
        } else {
            fail("hex bytes are pairs of hex digits: \"" + s.substr(i) + "\"");
        }
    }
    return out;
}

void Parser::fileStep(CaseStep& step, const std::string& kind, const std::string& rest) {
    size_t blank = rest.find(' ');
    step.name = rest.substr(0, blank);
    std::string inlineText = blank == std::string::npos ? "" : rest.substr(blank + 1);
    if (step.name.empty()) fail(kind + " without a name");
    if (kind == "pattern") {
        if (inlineText.empty() || inlineText.find_first_not_of("0123456789") != std::string::npos)
            fail("pattern <name> <count of bytes>");
        step.bytes.resize(std::stoul(inlineText));
        for (size_t i = 0; i < step.bytes.size(); ++i) step.bytes[i] = static_cast<char>(i % 251);
    } else {
        auto add = [&](const std::string& line) { step.bytes += kind == "hex" ? hexBytes(line) : text(line); };
        if (!inlineText.empty()) add(inlineText);
        for (size_t n; inlineText.empty() && ((n = emptyInBlock(at + 1)) > 0 || indented(at + 1)); at += n + 1) {
            if (kind != "hex") step.bytes.append(n, '\n');
            add(lines[at + n + 1].substr(2));
        }
    }
    target.steps.push_back(step);
}

// The words of a command line as the shell splits them: '...' literal, "..."
// with \" \\ \$ \` escaped, $'...' with C escapes, a backslash quoting the
// next character, $PWD expanded outside single quotes. tail gets the text
// behind a word "->".
std::vector<Word> Parser::words(const std::string& s, std::string& tail, bool& hasTail) const {
    std::vector<Word> words;
    for (size_t i = 0; i < s.size();) {
        if (s[i] == ' ' || s[i] == '\t') {
            ++i;
            continue;
        }
        if (s.compare(i, 2, "->") == 0 && (i + 2 == s.size() || s[i + 2] == ' ')) {
            hasTail = true;
            tail = i + 3 <= s.size() ? s.substr(i + 3) : "";
            break;
        }
        Word w;
        while (i < s.size() && s[i] != ' ' && s[i] != '\t') {
            bool ansi = s.compare(i, 2, "$'") == 0, quote = ansi || s[i] == '\'' || s[i] == '"' || s[i] == '\\';
            if (quote && w.quoted == std::string::npos) w.quoted = w.text.size();
            if (s[i] == '\\') {
                if (i + 1 >= s.size()) fail("a backslash at the end of the line");
                w.text += s[i + 1], i += 2;
            } else if (s[i] == '\'') {
                size_t end = s.find('\'', i + 1);
                if (end == std::string::npos) fail("a ' without its end");
                w.text += s.substr(i + 1, end - i - 1), i = end + 1;
            } else if (ansi) {
                i = decode(s, i + 2, '\'', w.text);
                if (i++ >= s.size()) fail("a $' without its end");
            } else if (quote) {
                for (++i; i < s.size() && s[i] != '"';) {
                    if (s[i] == '\\' && i + 1 < s.size() && std::strchr("\"\\$`", s[i + 1])) w.text += s[i + 1], i += 2;
                    else if (atWorkToken(s, i)) w.text += workDir, i += workToken.size();
                    else w.text += s[i++];
                }
                if (i++ >= s.size()) fail("a \" without its end");
            } else if (atWorkToken(s, i)) {
                w.text += workDir, i += workToken.size();
            } else {
                w.text += s[i++];
            }
        }
        words.push_back(w);
    }
    return words;
}

void Parser::runStep(CaseStep& step, const std::string& command) {
    std::string tail;
    bool hasTail = false;
    std::vector<Word> words = this->words(command, tail, hasTail);
    size_t first = 0, last = words.size();
    if (last >= 3 && words[0].is("cat") && words[2].is("|"))
        step.input = words[1].text, step.inputIsPipe = true, first = 3;
    if (last - first >= 2 && words[last - 2].is("<")) step.input = words[last - 1].text, last -= 2;
    for (; first < last; ++first) {  // NAME=value: the environment
        const std::string& w = words[first].text;
        size_t eq = w.find('=');
        if (eq == std::string::npos || eq == 0 || eq > words[first].quoted ||
            std::isdigit(static_cast<unsigned char>(w[0])) || !std::all_of(w.begin(), w.begin() + eq, nameChar))
            break;
        step.env.emplace_back(w.substr(0, eq), w.substr(eq + 1));
    }
    if (first >= last || (words[first].text != "skelvor" && words[first].text != "skelvor-calc"))
        fail("a run names skelvor or skelvor-calc");
    step.program = words[first].text;
    for (size_t k = first + 1; k < last; ++k) {
        for (const char* op : {"|", "<", ">", "->"})
            if (words[k].is(op)) fail(std::string("a stray ") + op + ": quote it to pass it as an argument");
        step.args.push_back(words[k].text);
    }

    bool statusGiven = hasTail && expectation(step, tail, true) == Status;
    for (size_t before = at, next; (next = at + emptyInBlock(at + 1) + 1) < lines.size(); before = at) {
        at = next;
        if (indented(next)) {
            step.out += std::string(next - before - 1, '\n') + text(lines[next].substr(2));
            continue;
        }
        Expected kind = lines[next].empty() ? NoExpectation : expectation(step, lines[next], false);
        if (kind == NoExpectation) {
            at = before;
            break;
        }
        statusGiven = statusGiven || kind == Status;
    }
    if (!statusGiven) step.status = startsWith(step.err, "ERROR-") || step.err.find("\nERROR-") != std::string::npos;
    target.steps.push_back(step);
}

// A line of what a run prints other than an indented line of standard
// output: "! <error line>", "!< <file of the case folder>" or "[<status>]";
// behind "->" any other text is a line of standard output.
Parser::Expected Parser::expectation(CaseStep& step, const std::string& line, bool tail) {
    if (line == "!" || startsWith(line, "! ")) {
        step.err += text(line.size() > 2 ? line.substr(2) : "");
    } else if (startsWith(line, "!< ")) {
        step.err += expand(readFile(folder + "/" + line.substr(3)));
    } else if (line.size() > 2 && line.front() == '[' && line.back() == ']') {
        std::string digits = line.substr(1, line.size() - 2);
        if (digits.find_first_not_of("0123456789") != std::string::npos) fail("a status is [<number>]");
        step.status = std::stoi(digits);
        return Status;
    } else if (tail) {
        step.out += text(line);
    } else {
        return NoExpectation;
    }
    return TextLine;
}

void Parser::parse(const std::string& content) {
    std::istringstream in(content);
    for (std::string line; std::getline(in, line);) lines.push_back(line);
    for (at = 0; at < lines.size(); ++at) {
        const std::string& line = lines[at];
        if (line.empty() || line[0] == '#') continue;
        CaseStep step;
        step.line = static_cast<int>(at + 1);
        step.text = line;
        size_t blank = line.find(' ');
        std::string word = line.substr(0, blank), rest = blank == std::string::npos ? "" : line.substr(blank + 1);
        if (word == "$") runStep(step, rest);
        else if (word == "file" || word == "hex" || word == "pattern") fileStep(step, word, rest);
        else fail("a line that is no step: \"" + line + "\"");
    }
}

}  // namespace

CaseFile::CaseFile(const std::string& folder, const std::string& workDir) : path(folder + "/case") {
    std::vector<fs::path> files;
    for (const auto& entry : fs::recursive_directory_iterator(folder))
        if (entry.is_regular_file() && entry.path() != fs::path(path)) files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    for (const fs::path& file : files) {
        CaseStep step;
        step.name = file.lexically_relative(folder).string();  // a link is read, not followed out
        step.bytes = readFile(file.string());
        steps.push_back(step);
    }
    Parser(*this, folder, workDir).parse(readFile(path));
}

std::string caseNotation(const std::string& text, const std::string& prefix) {
    static const char hex[] = "0123456789abcdef";
    std::string out;
    for (size_t from = 0; from < text.size();) {
        size_t end = std::min(text.find('\n', from), text.size());
        std::string line = text.substr(from, end - from), shown;
        bool plain = std::all_of(line.begin(), line.end(), [](char c) { return c >= 0x20 && c < 0x7f; });
        for (unsigned char c : line) {
            if (plain || (c >= 0x20 && c < 0x7f && c != '\\')) shown += static_cast<char>(c);
            else if (c == '\\') shown += "\\\\";
            else shown += std::string("\\x") + hex[c >> 4] + hex[c & 15];
        }
        out += prefix + shown + (plain ? "" : " (esc)") + (end == text.size() ? " (no-eol)" : "") + "\n";
        from = end + 1;
    }
    return out;
}

}  // namespace testsupport
