"""The tasks of the walkthrough."""

from tasks_building import (builds_a_balance_sheet, formats_a_statement_for_the_board, takes_chinese_from_elsewhere,
                            takes_over_an_old_workbook, works_on_two_sheets)
from tasks_screen import works_at_200_percent_in_the_dark, works_without_a_mouse
from tasks_trouble import (comes_back_after_a_crash, comes_back_after_closing, finds_out_why_a_figure_is_nothing,
                           finds_the_voucher_behind_a_wrong_figure, loses_the_database, mends_what_somebody_broke,
                           undoes_an_hour)

# The longest first, as two run at a time.
TASKS = [comes_back_after_a_crash, builds_a_balance_sheet, works_without_a_mouse, undoes_an_hour,
         works_at_200_percent_in_the_dark, formats_a_statement_for_the_board, mends_what_somebody_broke,
         takes_over_an_old_workbook, loses_the_database, finds_out_why_a_figure_is_nothing,
         finds_the_voucher_behind_a_wrong_figure, works_on_two_sheets,
         takes_chinese_from_elsewhere, comes_back_after_closing]
