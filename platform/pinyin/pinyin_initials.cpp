#include "platform/pinyin/pinyin_initials.h"

#include <QHash>
#include <QStringList>
#include <unicode/alphaindex.h>

#include <memory>

namespace selfreport {

namespace {

/// Characters of accounts, departments and companies that are read in more than one way.
struct ManyReadings {
    char16_t character;
    const char* initials; ///< the most usual one first
};

constexpr ManyReadings manyReadings[] = {
    {u'行', "hx"}, {u'长', "cz"}, {u'会', "hk"}, {u'调', "td"}, {u'重', "zc"}, {u'率', "ls"}, {u'还', "h"},
    {u'折', "z"},  {u'单', "ds"}, {u'厦', "xs"}, {u'曾', "zc"}, {u'贾', "jg"}, {u'区', "qo"}, {u'仇', "qc"},
    {u'沈', "sc"}, {u'乐', "ly"}, {u'降', "jx"}, {u'系', "xj"}, {u'传', "cz"}, {u'藏', "cz"}, {u'给', "gj"},
    {u'卡', "kq"}, {u'车', "cj"}, {u'解', "jx"}, {u'校', "xj"}, {u'省', "sx"}, {u'盛', "sc"}, {u'朝', "cz"},
    {u'都', "d"},  {u'弹', "dt"}, {u'粘', "zn"}, {u'石', "sd"}, {u'尉', "wy"}, {u'查', "cz"}, {u'翟', "zd"},
    {u'柏', "b"},  {u'万', "w"},  {u'参', "cs"}, {u'种', "zc"}, {u'称', "c"},  {u'提', "td"}, {u'合', "hg"},
};

/// The letters under which a Chinese index lists its words. Milliseconds to make, where the library's rules
/// for transliteration take a quarter of a second.
std::unique_ptr<icu::AlphabeticIndex::ImmutableIndex> lettersOfPinyin()
{
    UErrorCode status = U_ZERO_ERROR;
    icu::AlphabeticIndex index(icu::Locale("zh@collation=pinyin"), status);
    std::unique_ptr<icu::AlphabeticIndex::ImmutableIndex> letters(index.buildImmutableIndex(status));
    return U_SUCCESS(status) ? std::move(letters) : nullptr;
}

QString readingsOf(QChar character)
{
    for (const ManyReadings& many : manyReadings)
        if (QChar(many.character) == character)
            return QString::fromLatin1(many.initials);
    static const std::unique_ptr<icu::AlphabeticIndex::ImmutableIndex> letters = lettersOfPinyin();
    if (!letters)
        return {};
    UErrorCode status = U_ZERO_ERROR;
    const icu::AlphabeticIndex::Bucket* bucket =
        letters->getBucket(letters->getBucketIndex(icu::UnicodeString(character.unicode()), status));
    if (U_FAILURE(status) || !bucket || bucket->getLabelType() != U_ALPHAINDEX_NORMAL)
        return {};
    return QString(QChar(bucket->getLabel().charAt(0))).toLower();
}

/// Looking a character up in the library's rules takes microseconds, and names share few characters.
const QString& initialsOf(QChar character)
{
    static QHash<QChar, QString> known;
    auto found = known.find(character);
    if (found == known.end())
        found = known.insert(character, readingsOf(character));
    return *found;
}

bool isLetterOrDigit(QChar character)
{
    return (character >= 'a' && character <= 'z') || (character >= '0' && character <= '9');
}

} // namespace

QString pinyinInitials(const QString& name)
{
    constexpr qsizetype mostSpellings = 16;
    QStringList spellings{QString()};
    // Compatibility forms are folded first: full-width letters are letters.
    for (const QChar character : name.normalized(QString::NormalizationForm_KC).toLower()) {
        const QString initials = isLetterOrDigit(character) ? QString(character) : initialsOf(character);
        if (initials.isEmpty())
            continue;
        const bool branches = initials.size() * spellings.size() <= mostSpellings;
        QStringList longer;
        for (const QString& spelling : spellings)
            for (const QChar initial : branches ? initials : initials.left(1))
                longer.append(spelling + initial);
        spellings = longer;
    }
    return spellings.join('\n');
}

} // namespace selfreport
