#include "spreadsheet/values/html_escape.h"

namespace spreadsheet {

void appendHtml(std::string& html, std::string_view text)
{
    for (const char c : text) {
        switch (c) {
        case '&':
            html += "&amp;";
            break;
        case '<':
            html += "&lt;";
            break;
        case '>':
            html += "&gt;";
            break;
        case '"':
            html += "&quot;";
            break;
        case '\n':
            html += "<br>";
            break;
        case '\t':
            html += "&#9;"; // as it stands it would count as a blank
            break;
        default:
            html += c;
        }
    }
}

} // namespace spreadsheet
