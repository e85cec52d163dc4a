#include "xml_locate.h"

#include <cctype>
#include <cstring>
#include <vector>

namespace filterpack {
namespace {

bool isNameChar(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '_' || c == '-' || c == '.' || c == ':';
}

// A light scan over the markup: comments, CDATA, processing instructions and
// tags with quoted attributes. It tracks open elements so that text inside
// a shader element gets the CDATA advice. tinyxml2 passes an '&' that starts
// no entity through as it is (so "&&" in a shader is fine) and takes '<' in
// attribute values, so neither is reported.
class Scanner {
public:
    explicit Scanner(const std::string& text) : text(text) {}

    XmlProblem run() {
        while (at < text.size()) {
            const char c = text[at];
            if (c == '<') {
                if (!markup()) return problem;
            } else {
                advance(1);
            }
        }
        if (!open.empty()) {
            const Open& last = open.back();
            return XmlProblem{last.line, last.column, "<" + last.name + "> is never closed"};
        }
        return XmlProblem();
    }

private:
    struct Open {
        std::string name;
        int line;
        int column;
    };

    bool inShaderText() const {
        return !open.empty() && (open.back().name == "vertex" || open.back().name == "fragment");
    }

    bool fail(size_t where, const std::string& message) {
        const Open place = position(where, std::string());
        problem = XmlProblem{place.line, place.column, message};
        return false;
    }

    bool stray(size_t where) {
        if (inShaderText()) {
            return fail(where, "a '<' in the shader text of <" + open.back().name +
                                   "> ends the text early; wrap the source in <![CDATA[ ... ]]>");
        }
        return fail(where, "a '<' that starts no tag; write &lt;");
    }

    bool skipPast(const char* end, const std::string& what) {
        const size_t found = text.find(end, at);
        if (found == std::string::npos) return fail(at, what + " is never closed");
        advance(found + std::strlen(end) - at);
        return true;
    }

    bool markup() {
        if (text.compare(at, 4, "<!--") == 0) return skipPast("-->", "this comment");
        if (text.compare(at, 9, "<![CDATA[") == 0) return skipPast("]]>", "this CDATA section");
        if (text.compare(at, 2, "<?") == 0) return skipPast("?>", "this declaration");
        if (text.compare(at, 2, "<!") == 0) return skipPast(">", "this declaration");
        const size_t start = at;
        const bool closing = at + 1 < text.size() && text[at + 1] == '/';
        size_t p = at + (closing ? 2 : 1);
        const size_t nameStart = p;
        while (p < text.size() && isNameChar(text[p])) ++p;
        if (p == nameStart || std::isdigit(static_cast<unsigned char>(text[nameStart]))) return stray(start);
        const std::string name = text.substr(nameStart, p - nameStart);
        // Attributes: name="value" or name='value' up to '>' or '/>'.
        char quote = 0;
        for (; p < text.size(); ++p) {
            if (quote != 0) {
                if (text[p] == quote) quote = 0;
                continue;
            }
            if (text[p] == '"' || text[p] == '\'') quote = text[p];
            if (text[p] == '>' || text[p] == '<') break;
        }
        if (p >= text.size()) return fail(start, "the tag <" + std::string(closing ? "/" : "") + name + " is never ended with '>'");
        if (text[p] == '<') return fail(p, "the tag <" + name + " is not ended with '>' before the next '<'");
        const bool selfClosing = !closing && text[p - 1] == '/';
        const Open here = position(start, name);
        advance(p + 1 - at);
        if (closing) {
            if (open.empty()) return fail(start, "</" + name + "> closes nothing");
            if (open.back().name != name) {
                return fail(start, "</" + name + "> closes <" + open.back().name + "> opened on line " +
                                       std::to_string(open.back().line));
            }
            open.pop_back();
        } else if (!selfClosing) {
            open.push_back(here);
        }
        return true;
    }

    Open position(size_t where, const std::string& name) const {
        int line = 1;
        int column = 1;
        for (size_t i = 0; i < where; ++i) {
            if (text[i] == '\n') {
                ++line;
                column = 1;
            } else {
                ++column;
            }
        }
        return Open{name, line, column};
    }

    void advance(size_t count) { at += count; }

    const std::string& text;
    size_t at = 0;
    std::vector<Open> open;
    XmlProblem problem;
};

}  // namespace

XmlProblem locateXmlProblem(const std::string& text) { return Scanner(text).run(); }

}  // namespace filterpack
