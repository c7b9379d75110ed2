#include "LinesFile.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <sstream>

namespace {

constexpr std::size_t kMaxFileBytes = 16u << 20;
constexpr int kMaxDepth = 8;  // {"lines": [ [ [x, y] ] ]} needs 4

// A recursive-descent reader of the one shape a lines file has. It tracks the
// line and column of every fault.
class Reader {
  public:
    explicit Reader(const std::string& text) : text_(text) {}

    bool read(LinesFile& out, std::string& error) {
        skipBlanks();
        if (!expect('{', "the file must start with '{'")) return fail(error);
        skipBlanks();
        bool sawLines = false;
        if (peek() != '}') {
            for (;;) {
                std::string key;
                if (!readString(key)) return fail(error);
                skipBlanks();
                if (!expect(':', "expected ':' after the member name")) return fail(error);
                if (key != "lines") return fault("unknown member \"" + key + "\""), fail(error);
                if (sawLines) return fault("\"lines\" given twice"), fail(error);
                sawLines = true;
                skipBlanks();
                if (!readLines(out)) return fail(error);
                skipBlanks();
                if (peek() == ',') {
                    ++at_;
                    skipBlanks();
                    continue;
                }
                break;
            }
        }
        if (!expect('}', "expected ',' or '}'")) return fail(error);
        skipBlanks();
        if (at_ != text_.size()) return fault("unexpected text after the closing '}'"), fail(error);
        if (!sawLines) return fault("no \"lines\" member"), fail(error);
        return true;
    }

  private:
    char peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }

    void skipBlanks() {
        while (at_ < text_.size() && (text_[at_] == ' ' || text_[at_] == '\t' ||
                                      text_[at_] == '\n' || text_[at_] == '\r'))
            ++at_;
    }

    // Records the fault at the current position; the first fault wins.
    void fault(const std::string& what) {
        if (!message_.empty()) return;
        int line = 1, column = 1;
        for (std::size_t i = 0; i < at_ && i < text_.size(); ++i) {
            if (text_[i] == '\n') {
                ++line;
                column = 1;
            } else {
                ++column;
            }
        }
        message_ =
            "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + what;
    }

    bool fail(std::string& error) {
        if (message_.empty()) fault("not a lines file");
        error = message_;
        return false;
    }

    bool expect(char c, const char* what) {
        if (peek() != c) {
            fault(peek() == '\0' ? std::string(what) + " (the text ends here)" : what);
            return false;
        }
        ++at_;
        return true;
    }

    // A JSON string of plain characters (escapes are allowed and kept as written).
    bool readString(std::string& out) {
        if (!expect('"', "expected a member name in double quotes")) return false;
        while (at_ < text_.size() && text_[at_] != '"') {
            if (text_[at_] == '\\' && at_ + 1 < text_.size()) ++at_;
            if (static_cast<unsigned char>(text_[at_]) < 0x20) {
                fault("control character inside a string");
                return false;
            }
            out += text_[at_++];
        }
        return expect('"', "unterminated string");
    }

    // A JSON number, finite.
    bool readNumber(double& out) {
        const std::size_t start = at_;
        if (peek() == '-') ++at_;
        auto digits = [&] {
            const std::size_t from = at_;
            while (at_ < text_.size() && text_[at_] >= '0' && text_[at_] <= '9') ++at_;
            return at_ > from;
        };
        bool ok = digits();
        if (ok && peek() == '.') {
            ++at_;
            ok = digits();
        }
        if (ok && (peek() == 'e' || peek() == 'E')) {
            ++at_;
            if (peek() == '+' || peek() == '-') ++at_;
            ok = digits();
        }
        if (!ok) {
            at_ = start;
            fault("expected a number");
            return false;
        }
        const std::string number = text_.substr(start, at_ - start);
        errno = 0;
        out = std::strtod(number.c_str(), nullptr);
        if (errno == ERANGE || !std::isfinite(out)) {
            at_ = start;
            fault("number out of range: " + number);
            return false;
        }
        return true;
    }

    // [x, y]
    bool readPoint(LinePoint& point) {
        if (!expect('[', "expected a point [x, y]")) return false;
        skipBlanks();
        if (!readNumber(point.x)) return false;
        skipBlanks();
        if (!expect(',', "expected ',' between x and y")) return false;
        skipBlanks();
        if (!readNumber(point.y)) return false;
        skipBlanks();
        return expect(']', "a point has exactly two numbers: expected ']'");
    }

    // A list of points, or of lists for the whole "lines" member.
    template <class Item, class ReadItem>
    bool readList(std::vector<Item>& items, ReadItem readItem, const char* what) {
        if (++depth_ > kMaxDepth) {
            fault("nested too deeply");
            return false;
        }
        if (!expect('[', what)) return false;
        skipBlanks();
        if (peek() == ']') {
            ++at_;
            --depth_;
            return true;
        }
        for (;;) {
            Item item;
            if (!readItem(item)) return false;
            items.push_back(item);
            skipBlanks();
            if (peek() == ',') {
                ++at_;
                skipBlanks();
                continue;
            }
            if (!expect(']', "expected ',' or ']'")) return false;
            --depth_;
            return true;
        }
    }

    bool readLines(LinesFile& out) {
        return readList(
            out.lines,
            [this](std::vector<LinePoint>& line) {
                const std::size_t start = at_;
                if (!readList(
                        line, [this](LinePoint& p) { return readPoint(p); },
                        "expected a line: a list of points [[x, y], ...]")) {
                    return false;
                }
                if (line.size() < 2) {
                    at_ = start;
                    fault(line.empty() ? "a line needs at least two points; this one is empty"
                                       : "a line needs at least two points; this one has one");
                    return false;
                }
                return true;
            },
            "\"lines\" must be a list of lines");
    }

    const std::string& text_;
    std::size_t at_ = 0;
    int depth_ = 0;
    std::string message_;
};

}  // namespace

bool parseLinesText(const std::string& text, LinesFile& out, std::string& error) {
    out.lines.clear();
    LinesFile read;
    Reader reader(text);
    if (!reader.read(read, error)) return false;
    out = std::move(read);
    return true;
}

bool readLinesFile(const std::string& path, LinesFile& out, std::string& error) {
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        error = "cannot open " + path;
        return false;
    }
    std::string text;
    char chunk[65536];
    while (file.read(chunk, sizeof chunk) || file.gcount() > 0) {
        text.append(chunk, static_cast<std::size_t>(file.gcount()));
        if (text.size() > kMaxFileBytes) {
            error = path + ": larger than 16 MiB, not a lines file";
            return false;
        }
    }
    if (file.bad()) {
        error = "cannot read " + path;
        return false;
    }
    if (!parseLinesText(text, out, error)) {
        error = path + ": " + error;
        return false;
    }
    return true;
}

bool checkLinesInFrame(const LinesFile& lines, int width, int height, std::string& error) {
    for (std::size_t l = 0; l < lines.lines.size(); ++l) {
        for (std::size_t p = 0; p < lines.lines[l].size(); ++p) {
            const LinePoint& point = lines.lines[l][p];
            if (point.x < -0.5 || point.x > width - 0.5 || point.y < -0.5 ||
                point.y > height - 0.5) {
                char text[256];
                std::snprintf(text, sizeof text,
                              "line %zu, point %zu (%g, %g) lies outside the %dx%d frame "
                              "(x -0.5 to %g, y -0.5 to %g)",
                              l + 1, p + 1, point.x, point.y, width, height, width - 0.5,
                              height - 0.5);
                error = text;
                return false;
            }
        }
    }
    return true;
}

std::string formatLinesText(const LinesFile& lines) {
    std::string text = "{\"lines\": [";
    for (std::size_t l = 0; l < lines.lines.size(); ++l) {
        text += l == 0 ? "\n  [" : ",\n  [";
        for (std::size_t p = 0; p < lines.lines[l].size(); ++p) {
            // Room for the widest double in fixed notation (about 310 digits).
            char point[800];
            std::snprintf(point, sizeof point, "%s[%.3f, %.3f]", p == 0 ? "" : ", ",
                          lines.lines[l][p].x, lines.lines[l][p].y);
            text += point;
        }
        text += "]";
    }
    text += lines.lines.empty() ? "]}\n" : "\n]}\n";
    return text;
}
