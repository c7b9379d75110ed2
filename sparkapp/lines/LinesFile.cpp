// Lines files: read with nlohmann-json's event (SAX) parser, which reports
// each value as it comes, so that the shape is checked as the text is read
// and every fault names the line and column of the value that broke it.
#include "LinesFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <nlohmann/json.hpp>
#include <vector>

namespace {

constexpr std::size_t kMaxFileBytes = 16u << 20;
constexpr std::size_t kReadChunk = 65536;
constexpr std::size_t kMaxQuotedBytes = 40;  // a longer number is cut in a message

using Json = nlohmann::json;

// Where the values lie in the text: the parser reports values, not places,
// so each value's start is found from where the previous one ended.
class TextPlaces {
  public:
    explicit TextPlaces(const std::string& text) : text_(text) {}

    // The start of the next value (past blanks, ',' and ':'), and its end.
    std::size_t next() {
        std::size_t at = end_;
        while (at < text_.size() && std::strchr(" \t\r\n,:", text_[at]) && text_[at] != '\0') ++at;
        start_ = at;
        end_ = at < text_.size() ? valueEnd(at) : at;
        return start_;
    }
    std::size_t start() const { return start_; }

    // "line L, column C" of a place (both from 1).
    std::string where(std::size_t place) const {
        int line = 1, column = 1;
        for (std::size_t i = 0; i < place && i < text_.size(); ++i) {
            if (text_[i] == '\n') {
                ++line;
                column = 1;
            } else {
                ++column;
            }
        }
        return "line " + std::to_string(line) + ", column " + std::to_string(column);
    }

  private:
    // One past the value or bracket starting at `at`.
    std::size_t valueEnd(std::size_t at) const {
        const char first = text_[at];
        if (std::strchr("[]{}", first)) return at + 1;
        std::size_t end = at + 1;
        if (first == '"') {
            while (end < text_.size() && text_[end] != '"') end += text_[end] == '\\' ? 2 : 1;
            return std::min(end + 1, text_.size());
        }
        while (end < text_.size() && !std::strchr(" \t\r\n,:[]{}\"", text_[end])) ++end;
        return end;
    }

    const std::string& text_;
    std::size_t start_ = 0;
    std::size_t end_ = 0;
};

// Checks the one shape a lines file has while the parser reads it:
// {"lines": [ line, ... ]}, a line [point, point, ...], a point [x, y].
// Depth: 1 inside the object, 2 in "lines", 3 in a line, 4 in a point.
class LinesReader : public nlohmann::json_sax<Json> {
  public:
    explicit LinesReader(const std::string& text) : places_(text) {}

    bool null() override { return misplaced(); }
    bool boolean(bool) override { return misplaced(); }
    bool number_integer(number_integer_t value) override {
        return number(static_cast<double>(value), "");
    }
    bool number_unsigned(number_unsigned_t value) override {
        return number(static_cast<double>(value), "");
    }
    bool number_float(number_float_t value, const string_t& text) override {
        return number(value, text);
    }
    bool string(string_t&) override { return misplaced(); }
    bool binary(binary_t&) override { return misplaced(); }
    bool start_object(std::size_t) override;
    bool key(string_t& name) override;
    bool end_object() override;
    bool start_array(std::size_t) override;
    bool end_array() override;
    bool parse_error(std::size_t, const std::string&,
                     const nlohmann::detail::exception& e) override;

    LinesFile lines;
    std::string fault;

  private:
    bool number(double value, const std::string& text);
    // A value of a kind that does not belong where it stands.
    bool misplaced() {
        places_.next();
        return misplacedHere();
    }
    bool misplacedHere() {
        return fail(inLines_ ? "\"lines\" must be a list of lines" : "expected " + wanted());
    }
    bool fail(const std::string& what) {
        if (fault.empty()) fault = places_.where(places_.start()) + ": " + what;
        return false;
    }
    // What the place being read must hold.
    std::string wanted() const {
        switch (depth_) {
            case 0:
                return "'{': a lines file is {\"lines\": [...]}";
            case 2:
                return "a line: a list of points [[x, y], ...]";
            case 3:
                return "a point [x, y]";
            case 4:
                return "a number";
            default:
                return "a member name";
        }
    }

    TextPlaces places_;
    int depth_ = 0;
    bool inLines_ = false;  // the value of "lines" comes next
    bool sawLines_ = false;
    std::size_t lineStart_ = 0;
    std::size_t coordinates_ = 0;  // of the point being read
    std::size_t points_ = 0;       // in all lines so far
};

bool LinesReader::start_object(std::size_t) {
    places_.next();
    if (depth_ != 0) return misplacedHere();
    ++depth_;
    return true;
}

bool LinesReader::key(string_t& name) {
    places_.next();
    if (name != "lines") return fail("unknown member \"" + name + "\"");
    if (sawLines_) return fail("\"lines\" given twice");
    sawLines_ = inLines_ = true;
    return true;
}

bool LinesReader::end_object() {
    places_.next();
    if (!sawLines_) return fail("no \"lines\" member");
    --depth_;
    return true;
}

bool LinesReader::start_array(std::size_t) {
    const std::size_t at = places_.next();
    if (depth_ == 1 && !inLines_) return fail("expected " + wanted());
    if (depth_ == 0 || depth_ >= 4) return fail("expected " + wanted());
    inLines_ = false;
    if (depth_ == 2) {
        if (lines.lines.size() == kMaxLines)
            return fail("more than " + std::to_string(kMaxLines) +
                        " lines (a lines file holds at most " + std::to_string(kMaxLines) + ")");
        lines.lines.emplace_back();
        lineStart_ = at;
    }
    if (depth_ == 3) {
        if (points_ == kMaxPoints)
            return fail("more than " + std::to_string(kMaxPoints) +
                        " points (a lines file holds at most " + std::to_string(kMaxPoints) +
                        " in all)");
        ++points_;
        lines.lines.back().emplace_back();
        coordinates_ = 0;
    }
    ++depth_;
    return true;
}

bool LinesReader::end_array() {
    places_.next();
    --depth_;
    if (depth_ == 3 && coordinates_ < 2)
        return fail("a point has two numbers, x and y; this one has " +
                    std::to_string(coordinates_));
    if (depth_ == 2 && lines.lines.back().size() < 2) {
        const bool empty = lines.lines.back().empty();
        fault = places_.where(lineStart_) + ": a line needs at least two points; this one " +
                (empty ? "is empty" : "has one");
        return false;
    }
    return true;
}

bool LinesReader::number(double value, const std::string& text) {
    places_.next();
    if (depth_ != 4) return misplacedHere();
    if (coordinates_ == 2) return fail("a point has exactly two numbers: expected ']'");
    if (!std::isfinite(value)) {
        const std::string shown =
            text.size() > kMaxQuotedBytes ? text.substr(0, kMaxQuotedBytes) + "..." : text;
        return fail("number out of range: " + shown);
    }
    LinePoint& point = lines.lines.back().back();
    (coordinates_++ == 0 ? point.x : point.y) = value;
    return true;
}

// The parser's own report of text that is not JSON: its line and column and
// what it expected (without the text it quotes, which may be long); or a
// number too large for a double, at the number.
bool LinesReader::parse_error(std::size_t, const std::string& token,
                              const nlohmann::detail::exception& e) {
    if (!fault.empty()) return false;
    std::string what = e.what();
    const std::size_t at = what.find("line ");
    if (at == std::string::npos) {
        places_.next();
        const std::string shown =
            token.size() > kMaxQuotedBytes ? token.substr(0, kMaxQuotedBytes) + "..." : token;
        return fail("number out of range: " + shown);
    }
    what = what.substr(at);
    const std::size_t quote = what.find("; last read: '");
    if (quote != std::string::npos) {
        const std::size_t quoteEnd = what.find("'; ", quote + 14);
        what.erase(quote, quoteEnd == std::string::npos ? std::string::npos : quoteEnd + 1 - quote);
    }
    fault = what;
    return false;
}

}  // namespace

bool parseLinesText(const std::string& text, LinesFile& out, std::string& error) {
    out.lines.clear();
    LinesReader reader(text);
    if (!Json::sax_parse(text, &reader) || !reader.fault.empty()) {
        error = reader.fault.empty() ? "line 1, column 1: not a lines file" : reader.fault;
        return false;
    }
    out = std::move(reader.lines);
    return true;
}

bool readLinesFile(const std::string& path, LinesFile& out, std::string& error) {
    // Not blocking: a pipe under the name is refused, never waited on.
    const int fd = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        error = "cannot open " + path + ": " + std::strerror(errno);
        return false;
    }
    struct stat status;
    std::string text;
    bool fine = fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
    if (!fine) error = "cannot read " + path + ": not a regular file";
    std::vector<char> chunk(kReadChunk);
    while (fine) {
        const ssize_t got = ::read(fd, chunk.data(), chunk.size());
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) {
            fine = got == 0;
            if (!fine) error = "cannot read " + path + ": " + std::strerror(errno);
            break;
        }
        text.append(chunk.data(), static_cast<std::size_t>(got));
        if (text.size() > kMaxFileBytes) {
            error = path + ": larger than 16 MiB, not a lines file";
            fine = false;
        }
    }
    ::close(fd);
    if (!fine) return false;
    if (!parseLinesText(text, out, error)) {
        error = path + ": " + error;
        return false;
    }
    return true;
}

std::string coincidentPoints(const LinesFile& lines) {
    std::size_t count = 0;
    std::string first;
    for (std::size_t l = 0; l < lines.lines.size(); ++l) {
        const std::vector<LinePoint>& line = lines.lines[l];
        for (std::size_t p = 1; p < line.size(); ++p) {
            if (line[p].x != line[p - 1].x || line[p].y != line[p - 1].y) continue;
            if (count++ == 0) {
                char text[160];
                std::snprintf(text, sizeof text, "line %zu, points %zu and %zu (%g, %g)", l + 1, p,
                              p + 1, line[p].x, line[p].y);
                first = text;
            }
        }
    }
    if (count == 0) return "";
    return std::to_string(count) + " pair(s) of consecutive points coincide, the first at " +
           first + ": a click given twice adds nothing to AutoFind's fit";
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
