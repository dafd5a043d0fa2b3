#pragma once
#include <string>

namespace selfreport {

/// Builds the demo reports (资产负债表, 利润表, 部门费用明细表, 应收账款客户分析表, 商品数量金额表 and
/// 财务摘要, which reads the others) over the demo ledger's latest year and stores them in this order as new
/// reports, with page set-up, header and footer, saved by user "admin".
/// @throws std::runtime_error why a report could not be built or stored; those before it stay stored
void storeDemoReports(const std::string& connectionString);

} // namespace selfreport
