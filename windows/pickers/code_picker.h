#pragma once
#include <functional>
#include <QString>
#include <string>

class QDialog;

namespace selfreport {

class ListGrid;

/// Lays out a dialog that lists codes with their names: one tab with the list `vsf1`, the buttons `cmdXPOK`
/// and `cmdXPClose`. Column 1 holds the code, column 2 the name. A double click does the same as OK.
/// @param caption  of the window and of its tab, UTF-8
ListGrid* buildCodePicker(QDialog& dialog, const char* caption, std::function<void()> ok,
                          std::function<void()> close);

/// A row of such a list from its three columns, in UTF-8.
QString codeRow(const std::string& first, const std::string& code, const std::string& name);

/// Hands the current row's code on and closes the dialog. Without a current data row nothing happens.
void pickCode(QDialog& dialog, const ListGrid& list, const std::function<void(const QString&)>& handBack);

} // namespace selfreport
