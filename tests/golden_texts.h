#pragma once
#include <fstream>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>

namespace selfreport::test {

/// Texts of a golden file under tests/data: "[name]" lines, each followed by one text in which "·" stands for
/// a blank and "⏎" at a line's end joins the next line.
class GoldenTexts {
public:
    explicit GoldenTexts(const std::string& file)
    {
        std::ifstream stream(TEST_DATA_FOLDER "/" + file);
        std::string line, name;
        bool open = false;
        while (std::getline(stream, line)) {
            if (line.starts_with('[') && line.ends_with(']')) {
                name = line.substr(1, line.size() - 2);
                open = true;
            } else if (open) {
                open = takeOff(line, "⏎");
                m_texts[name] += blanksShown(line);
            }
        }
        if (m_texts.empty())
            throw std::runtime_error("no golden texts in " + file);
    }

    const std::string& operator[](const std::string& name) const { return m_texts.at(name); }

private:
    static bool takeOff(std::string& line, std::string_view end)
    {
        if (!line.ends_with(end))
            return false;
        line.resize(line.size() - end.size());
        return true;
    }
    static std::string blanksShown(std::string line)
    {
        constexpr std::string_view dot = "·";
        for (std::size_t at = 0; (at = line.find(dot, at)) != std::string::npos; ++at)
            line.replace(at, dot.size(), " ");
        return line;
    }

    std::map<std::string, std::string> m_texts;
};

} // namespace selfreport::test
