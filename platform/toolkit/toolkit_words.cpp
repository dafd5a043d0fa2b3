#include "platform/toolkit/toolkit_words.h"

#include <QHash>
#include <QLatin1String>

namespace selfreport {

namespace {

struct Words {
    const char *source, *own;
};

constexpr Words buttons[] = {
    {"OK", "确定"},
    {"&OK", "确定(&O)"},
    {"Cancel", "取消"},
    {"&Cancel", "取消(&C)"},
    {"&Yes", "是(&Y)"},
    {"Yes to &All", "全部是(&A)"},
    {"&No", "否(&N)"},
    {"N&o to All", "全部否(&O)"},
    {"Open", "打开"},
    {"Save", "保存"},
    {"Save All", "全部保存"},
    {"Close", "关闭"},
    {"Apply", "应用"},
    {"Reset", "重置"},
    {"Restore Defaults", "恢复默认值"},
    {"Discard", "放弃"},
    {"Help", "帮助"},
    {"Abort", "中止"},
    {"Retry", "重试"},
    {"Ignore", "忽略"},
    {"Show Details...", "显示详细信息…"},
    {"Hide Details...", "隐藏详细信息…"},
    {"What's This?", "这是什么?"},
};

constexpr Words contextMenus[] = {
    {"&Undo", "撤销(&U)"},
    {"&Redo", "重做(&R)"},
    {"Cu&t", "剪切(&T)"},
    {"&Copy", "复制(&C)"},
    {"Copy &Link Location", "复制链接地址(&L)"},
    {"&Paste", "粘贴(&P)"},
    {"Delete", "删除"},
    {"Select All", "全选"},
    {"&Select All", "全选(&S)"},
    {"&Step up", "增加(&I)"},
    {"Step &down", "减少(&D)"},
    {"Scroll here", "滚动到此处"},
    {"Top", "顶端"},
    {"Bottom", "底端"},
    {"Left edge", "左端"},
    {"Right edge", "右端"},
    {"Page up", "向上一页"},
    {"Page down", "向下一页"},
    {"Page left", "向左一页"},
    {"Page right", "向右一页"},
    {"Scroll up", "向上滚动"},
    {"Scroll down", "向下滚动"},
    {"Scroll left", "向左滚动"},
    {"Scroll right", "向右滚动"},
};

constexpr Words files[] = {
    {"&Open", "打开(&O)"},
    {"&Save", "保存(&S)"},
    {"&Choose", "选择(&C)"},
    {"Look in:", "位置:"},
    {"Directory:", "文件夹:"},
    {"File &name:", "文件名(&N):"},
    {"Files of type:", "文件类型:"},
    {"Save As", "另存为"},
    {"Find Directory", "选择文件夹"},
    {"All Files (*)", "所有文件 (*)"},
    {"All files (*)", "所有文件 (*)"},
    {"Directories", "文件夹"},
    {"Files", "文件"},
    {"Back", "后退"},
    {"Go back", "后退"},
    {"Forward", "前进"},
    {"Go forward", "前进"},
    {"Parent Directory", "上一级"},
    {"Go to the parent directory", "转到上一级文件夹"},
    {"Create New Folder", "新建文件夹"},
    {"Create a New Folder", "新建文件夹"},
    {"List View", "列表"},
    {"Change to list view mode", "只列出名称"},
    {"Detail View", "详细信息"},
    {"Change to detail view mode", "列出大小、类型和时间"},
    {"Sidebar", "常用位置"},
    {"List of places and bookmarks", "常用位置"},
    // Keys, which the toolkit reads from the translation: they must stay keys.
    {"Alt+Left", "Alt+Left"},
    {"Alt+Right", "Alt+Right"},
    {"Alt+Up", "Alt+Up"},
    {"&Rename", "重命名(&R)"},
    {"&Delete", "删除(&D)"},
    {"Show &hidden files", "显示隐藏文件(&H)"},
    {"&New Folder", "新建文件夹(&N)"},
    {"New Folder", "新建文件夹"},
    {"Remove", "移除"},
    {"Recent Places", "最近的位置"},
    {"Computer", "计算机"},
    {"My Computer", "计算机"},
    {"Show ", "显示 "},
    {"Name", "名称"},
    {"Size", "大小"},
    {"Type", "类型"},
    {"Kind", "类型"},
    {"Date Modified", "修改时间"},
    {"Drive", "驱动器"},
    {"File", "文件"},
    {"%1 File", "%1 文件"},
    {"Folder", "文件夹"},
    {"File Folder", "文件夹"},
    {"Shortcut", "快捷方式"},
    {"Alias", "快捷方式"},
    {"Unknown", "未知"},
    {"%1\nFile not found.\nPlease verify the correct file name was given.", "%1\n找不到文件,请核对文件名。"},
    {"%1\nDirectory not found.\nPlease verify the correct directory name was given.",
     "%1\n找不到文件夹,请核对它的名称。"},
    {"%1 already exists.\nDo you want to replace it?", "%1 已经存在。\n要替换它吗?"},
    {"'%1' is write protected.\nDo you want to delete it anyway?", "“%1”有写保护。\n仍然要删除它吗?"},
    {"Are you sure you want to delete '%1'?", "确定要删除“%1”吗?"},
    {"Could not delete directory.", "无法删除文件夹。"},
    {"Invalid filename", "文件名无效"},
    {"<b>The name \"%1\" cannot be used.</b><p>Try using another name, with fewer characters or no "
     "punctuation "
     "marks.",
     "<b>不能使用名称“%1”。</b><p>请换一个短一些、没有标点的名称。"},
};

constexpr Words colourDialog[] = {
    {"Select Color", "选择颜色"},
    {"&Basic colors", "基本颜色(&B)"},
    {"&Custom colors", "自定义颜色(&C)"},
    {"&Add to Custom Colors", "添加到自定义颜色(&A)"},
    {"&Pick Screen Color", "在屏幕上取色(&P)"},
    {"Cursor at %1, %2\nPress ESC to cancel", "光标在 %1, %2\n按退出键取消"},
    {"Hu&e:", "色调(&E):"},
    {"&Sat:", "饱和度(&S):"},
    {"&Val:", "亮度(&V):"},
    {"&Red:", "红(&R):"},
    {"&Green:", "绿(&G):"},
    {"Bl&ue:", "蓝(&U):"},
    {"A&lpha channel:", "不透明度(&L):"},
    {"&HTML:", "色值(&H):"},
};

QHash<QLatin1String, QString> allWords()
{
    QHash<QLatin1String, QString> words;
    const auto add = [&words](const auto& table) {
        for (const auto& [source, own] : table)
            words.insert(QLatin1String(source), QString::fromUtf8(own));
    };
    add(buttons);
    add(contextMenus);
    add(files);
    add(colourDialog);
    return words;
}

} // namespace

QString ownWords(const char* source)
{
    static const QHash<QLatin1String, QString> words = allWords();
    return words.value(QLatin1String(source));
}

} // namespace selfreport
