#include "host/command_line.h"
#include "tool/tool_api.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <limits>
#include <memory>
#include <string_view>

namespace selfreport {

// Scripts and schedulers call the program, often without anybody who reads what it says. So the command line
// is read as a whole before anything is done, a mistake is told in one sentence with an exit code of its own,
// and each command's help says what it writes where.

namespace {

constexpr auto overview = R"(不给命令时打开报表窗口。
示例:
  selfreport --db demo.db
      打开账套 demo.db 的报表窗口。
  selfreport demo demo.db
      建立演示账套 demo.db,内有两年凭证和六张报表。
  selfreport list --db demo.db
      列出账套中的报表。
  selfreport run 1 --db demo.db --pdf 资产负债表.pdf --csv 资产负债表.csv
      对账套取数并计算 1 号报表,写成 PDF 和 CSV。
  selfreport run --help
      显示一个命令的详细用法。

结果写到标准输出; 进度、取数诊断和错误写到标准错误。
退出码: 0 成功; 1 失败,标准错误说明原因; 2 命令行有误; 4 严格输出 (--strict) 不放行。)";

constexpr auto demoHelp = R"(示例:
  selfreport demo demo.db
      新建 demo.db; 文件已存在时不动它。
  selfreport demo --overwrite demo.db
      重新生成; 全部写好之后才替换原来的文件。)";

constexpr auto listHelp = R"(每张报表一行,各列以制表符分隔。
示例:
  selfreport list --db demo.db)";

constexpr auto runHelp = R"(不给 --pdf 和 --csv 时,CSV 写到标准输出。已有的文件在全部写好之后才被替换;
失败时原样保留。取不到数的单元格逐个列在标准错误上。有取数失败时 (不是没有数据,而是读不到账)
退出码为 1,什么也不写; 加 --allow-failed 则照写,PDF 每页第一行、CSV 最后一行注明有几处失败。
加 --strict 时,有单元格用到不存在的科目、项目、类别、货币、报表等,什么也不写出,退出码为 4;
有取数失败则为 1,不管有没有 --allow-failed。
管道、设备和套接字直接写入,不会被替换; 符号链接写到它指向的文件。
示例:
  selfreport run 1 --db demo.db --pdf 资产负债表.pdf --csv 资产负债表.csv
  selfreport run 1 --db "Provider=SQLOLEDB;Data Source=server,1433;Initial Catalog=cw;User ID=u;Password=p" --pdf a.pdf
      账套在 SQL Server 上。)";

constexpr auto checkHelp = R"(每行: 报表中的数、另行查询的数、是否一致、报表和项目。有不一致时退出码为 1。
示例:
  selfreport check --db demo.db)";

constexpr auto proveHelp =
    R"(只读: 余额、发生额、累计、上下级科目、核算项目、试算平衡、损益、数量、档案、凭证,
以及取数本身 (区间、成批、联查)。每项一行; 不符的列出差额、前十行和查全部的语句,退出码为 1。
示例:
  selfreport prove --db demo.db
  selfreport prove --db demo.db --year 2025 --json > 自检.json)";

constexpr auto explainHelp = R"(把单元格的数拆成取数,再逐级拆成科目、核算项目、期间和凭证,每级都加回来核对:
合计与上一级不等时列出差额,退出码为 1。
示例:
  selfreport explain 1 D5 --db demo.db
  selfreport explain 1 '资产负债表!D5' --depth 1 --json --db demo.db
      只列取数,写成 JSON。)";

constexpr auto convertHelp = R"(
不能保留的内容逐条列在标准错误上。已有的文件在全部写好之后才被替换; 失败时原样保留。
示例:
  selfreport convert 旧报表.xls 报表.ss7
  selfreport convert 报表.ss7 报表.xlsx --recalculate)";

constexpr auto functionsHelp = R"(按类别列出公式中可用的函数、参数和说明,Markdown 格式。
示例:
  selfreport functions > functions.md)";

/// In columns of a terminal, where what is not ASCII takes two.
std::size_t widthOf(std::string_view text)
{
    std::size_t width = 0;
    for (const char c : text)
        width += (c & 0x80) == 0 ? 1 : (c & 0xC0) == 0xC0 ? 2 : 0;
    return width;
}

std::string row(const std::string& name, std::size_t widest, const std::string& description)
{
    const std::size_t width = widthOf(name);
    return "  " + name + std::string(std::max(widest, width) - width + 2, ' ') + description + "\n";
}

/// The library's texts around ours, in Chinese.
class ChineseFormatter : public CLI::Formatter {
public:
    ChineseFormatter()
    {
        label("OPTIONS", "选项");
        label("REQUIRED", "(必填)");
        label("SUBCOMMAND", "命令");
        label("SUBCOMMANDS", "命令");
        label("Needs", "需要");
    }
    std::string make_usage(const CLI::App* app, std::string name) const override
    {
        const std::string usual = CLI::Formatter::make_usage(app, name);
        return "用法" + usual.substr(usual.find(':'));
    }
    std::string make_group(std::string /*group*/, bool isPositional,
                           std::vector<const CLI::Option*> options) const override
    {
        return CLI::Formatter::make_group(isPositional ? "参数" : "选项", isPositional, std::move(options));
    }
    std::string make_subcommands(const CLI::App* app, CLI::AppFormatMode) const override
    {
        const auto commands = app->get_subcommands({});
        std::size_t widest = 0;
        for (const CLI::App* command : commands)
            widest = std::max(widest, widthOf(command->get_name()));
        std::string text = commands.empty() ? "" : "\n命令:\n";
        for (const CLI::App* command : commands)
            text += row(command->get_name(), widest, command->get_description());
        return text;
    }
    std::string make_option(const CLI::Option* option, bool isPositional) const override
    {
        constexpr std::size_t widest = 30; // of all commands alike
        return row(make_option_name(option, isPositional) + make_option_opts(option), widest,
                   make_option_desc(option));
    }
};

/// What no option or argument took, as it was typed; the library's text has it backwards.
std::string unknownTexts(const CLI::App& app)
{
    std::string texts;
    for (const std::string& text : app.remaining(true))
        texts += (texts.empty() ? "" : " ") + text;
    return texts;
}

/// What the library says in English, in Chinese; the names and values in its text stay.
std::string reasonOf(const CLI::App& app, const CLI::ParseError& error)
{
    const std::string text = error.what();
    const std::string named = text.substr(text.find(": ") == std::string::npos ? 0 : text.find(": ") + 2);
    if (dynamic_cast<const CLI::RequiredError*>(&error))
        return "缺少 " + text.substr(0, text.find(" is required"));
    if (dynamic_cast<const CLI::ConversionError*>(&error))
        return "不是有效的值: " + named;
    if (dynamic_cast<const CLI::RequiresError*>(&error))
        return text.substr(0, text.find(" requires ")) + " 要和 " + text.substr(text.rfind(' ') + 1) +
               " 一起用";
    if (dynamic_cast<const CLI::ExtrasError*>(&error))
        return "不认识: " + unknownTexts(app);
    if (dynamic_cast<const CLI::ArgumentMismatch*>(&error))
        return "要有且只有一个值: " + text.substr(0, text.find(':'));
    return text;
}

int refusal(const CLI::App& app, const CLI::ParseError& error)
{
    std::cerr << "命令行有误: " << reasonOf(app, error) << "\n用 " << app.get_name()
              << " --help 查看用法。\n";
    return 2;
}

CLI::App* addCommand(CLI::App& app, const char* name, const std::string& description, const std::string& help)
{
    CLI::App* command = app.add_subcommand(name, description);
    command->set_help_flag("-h,--help", "显示本命令的用法");
    command->footer(help);
    return command;
}

/// May stand before the command, too: whether it is given is found out at the end.
void addDatabase(CLI::App* command, std::string& database)
{
    command->add_option("--db", database, "连接串,或内置数据库的文件名")->type_name("DB (必填)");
}

/// Digits alone, as people write numbers: 010 is ten, 0x10 none.
CLI::Validator wholeNumber(std::int64_t least, std::int64_t most)
{
    const auto read = [least, most](std::string& text) {
        std::int64_t number = 0;
        const char* const end = text.data() + text.size();
        const auto [rest, error] = std::from_chars(text.data(), end, number);
        if (error != std::errc() || rest != end || number < least || number > most)
            return "应为 " + std::to_string(least) + " 到 " + std::to_string(most) + " 的整数, 不是 \"" +
                   text + "\"";
        text = std::to_string(number);
        return std::string();
    };
    return {read, ""};
}

/// A variable of a script that was never set must not count as an option that was not given.
CLI::Validator someName()
{
    return {[](std::string& text) { return std::string(text.empty() ? "没有给出文件名" : ""); }, ""};
}

CLI::Option* addReportId(CLI::App* command, std::int32_t& id)
{
    return command->add_option("ID", id, "报表编号,见 list")
        ->required()
        ->transform(wholeNumber(1, std::numeric_limits<std::int32_t>::max()))
        ->type_name("");
}

/// What stands without a command, and in front of one.
void prepare(CLI::App& app, WindowCommand& window)
{
    app.formatter(std::make_shared<ChineseFormatter>());
    app.set_help_flag("-h,--help", "显示用法");
    app.footer(overview);
    app.require_subcommand(0, 1);
    app.add_option("--db", window.database, "不给命令时打开窗口: 连接串,或内置数据库的文件名")
        ->type_name("DB");
}

const CLI::App* addDemoCommand(CLI::App& app, DemoCommand& demo)
{
    CLI::App* command = addCommand(app, "demo", "建立演示账套和报表", demoHelp);
    command->add_option("FILE", demo.file, "新建的数据库文件")->required()->type_name("");
    command->add_flag("--overwrite", demo.replaces, "文件已存在时覆盖");
    return command;
}

const CLI::App* addRunCommand(CLI::App& app, RunCommand& run)
{
    CLI::App* command = addCommand(app, "run", "计算一张报表,写成 PDF 或 CSV", runHelp);
    addReportId(command, run.reportId);
    addDatabase(command, run.database);
    CLI::Option* const pdf = command->add_option("--pdf", run.pdf, "写出 PDF (全部表页)");
    pdf->check(someName())->type_name("FILE");
    command->add_flag("--archive", run.isArchive, "PDF 按 PDF/A-1b 存档格式写出")->needs(pdf);
    command->add_option("--csv", run.csv, "写出 CSV (全部表页,UTF-8)")->check(someName())->type_name("FILE");
    command->add_flag("--allow-failed", run.allowFailed, "有取数失败时也写出,并加注");
    command->add_flag("--strict", run.isStrict, "有取数失败或不存在的科目、项目、货币时什么也不写出");
    return command;
}

const CLI::App* addProveCommand(CLI::App& app, ProveCommand& prove)
{
    CLI::App* command = addCommand(app, "prove", "账套自检: 账簿各数之间应有的关系是否成立", proveHelp);
    addDatabase(command, prove.database);
    command->add_option("--year", prove.year, "只查一年")->transform(wholeNumber(1, 9999))->type_name("Y");
    command->add_flag("--json", prove.asJson, "写成 JSON");
    return command;
}

const CLI::App* addExplainCommand(CLI::App& app, ExplainCommand& explain)
{
    CLI::App* command = addCommand(app, "explain", "联查: 一个数是由哪些数组成的", explainHelp);
    addReportId(command, explain.reportId);
    command->add_option("CELL", explain.cell, "单元格: Sheet1!B7,或第一个表页的 B7")
        ->required()
        ->type_name("");
    addDatabase(command, explain.database);
    command->add_option("--depth", explain.depth, "展开几级 (1 到 9,不给时 3)")
        ->transform(wholeNumber(1, 9))
        ->type_name("N");
    command->add_flag("--json", explain.asJson, "写成 JSON");
    return command;
}

/// Endings of the formats that are read, or of those that are only written.
std::string endings(bool areRead, const char* between)
{
    std::string text;
    for (const ToolFormat& format : toolFormats()) {
        if (format.isRead == areRead)
            text += (text.empty() ? "" : between) + format.ending;
    }
    return text;
}

const CLI::App* addConvertCommand(CLI::App& app, ConvertCommand& convert)
{
    const std::string description = "在 " + endings(true, "、") + "、" + endings(false, "、") + " 之间转换";
    const std::string help = "读入的格式按内容识别 (" + endings(true, " ") + "),写出的格式按扩展名 (还有 " +
                             endings(false, " ") + ")。" + convertHelp;
    CLI::App* command = addCommand(app, "convert", description, help);
    command->add_option("IN", convert.input, "要读的文件")->required()->type_name("");
    command->add_option("OUT", convert.output, "要写的文件")->required()->type_name("");
    command->add_flag("--recalculate", convert.recalculates, "写出之前重新计算全部公式");
    return command;
}

/// A command with the database that was given behind it, or else before it.
template <class OfDatabase>
Command onDatabase(const CLI::App& app, OfDatabase command, const WindowCommand& window)
{
    if (command.database.empty())
        command.database = window.database;
    if (command.database.empty())
        return Finished{refusal(app, CLI::RequiredError("--db"))};
    return command;
}

} // namespace

Command readCommandLine(int count, const char* const* arguments)
{
    CLI::App app("自定义财务报表", "selfreport");
    WindowCommand window;
    prepare(app, window);

    DemoCommand demo;
    const CLI::App* demoCommand = addDemoCommand(app, demo);

    ListCommand list;
    CLI::App* listCommand = addCommand(app, "list", "列出报表: 编号、名称、保存人、保存时间", listHelp);
    addDatabase(listCommand, list.database);

    RunCommand run;
    const CLI::App* runCommand = addRunCommand(app, run);

    CheckCommand check;
    CLI::App* checkCommand = addCommand(app, "check", "将演示报表的数据与另行查询的结果核对", checkHelp);
    addDatabase(checkCommand, check.database);

    ProveCommand prove;
    const CLI::App* proveCommand = addProveCommand(app, prove);

    ExplainCommand explain;
    const CLI::App* explainCommand = addExplainCommand(app, explain);

    ConvertCommand convert;
    const CLI::App* convertCommand = addConvertCommand(app, convert);

    const CLI::App* functionsCommand = addCommand(app, "functions", "列出公式中可用的函数", functionsHelp);

    try {
        app.parse(count, arguments);
    } catch (const CLI::Success& success) {
        return Finished{app.exit(success)};
    } catch (const CLI::ParseError& error) {
        return Finished{refusal(app, error)};
    }
    if (demoCommand->parsed())
        return demo;
    if (listCommand->parsed())
        return onDatabase(app, list, window);
    if (runCommand->parsed())
        return onDatabase(app, run, window);
    if (checkCommand->parsed())
        return onDatabase(app, check, window);
    if (proveCommand->parsed())
        return onDatabase(app, prove, window);
    if (explainCommand->parsed())
        return onDatabase(app, explain, window);
    if (convertCommand->parsed())
        return convert;
    if (functionsCommand->parsed())
        return FunctionsCommand{};
    return window;
}

} // namespace selfreport
