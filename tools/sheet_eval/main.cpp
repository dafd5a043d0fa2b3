// Reads requests from standard input, one JSON object a line, and writes the answers to standard output.
#include "tools/sheet_eval/answer.h"

#include <iostream>

int main(int count, char** arguments)
{
    if (count > 1) {
        const std::string_view first = arguments[1];
        const bool asked = first == "--help" || first == "-h";
        (asked ? std::cout : std::cerr) << "用法: sheet-eval < 请求.jsonl > 结果.jsonl\n"
                                           "每行一个 JSON 对象,格式见 docs/sheet-eval.md。\n";
        return asked ? 0 : 2;
    }
    std::ios::sync_with_stdio(false);
    std::cin.tie(nullptr);
    for (std::string line; std::getline(std::cin, line);) {
        if (line.find_first_not_of(" \t\r") != std::string::npos)
            std::cout << spreadsheet::answerTo(line, std::cerr) << '\n';
        if (std::cin.rdbuf()->in_avail() <= 0)
            std::cout.flush(); // who asks line by line waits for the answer
    }
    std::cout.flush();
    return std::cout.good() ? 0 : 1;
}
