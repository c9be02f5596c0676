#include "platform/Locale.h"

#include <QLocale>

#include <map>

int localeCountryCode()
{
    static const std::map<QLocale::Territory, int> codes = {
        {QLocale::UnitedStates, 1},   {QLocale::Canada, 2},        {QLocale::Russia, 7},
        {QLocale::Egypt, 20},         {QLocale::SouthAfrica, 27},  {QLocale::Greece, 30},
        {QLocale::Netherlands, 31},   {QLocale::Belgium, 32},      {QLocale::France, 33},
        {QLocale::Spain, 34},         {QLocale::Hungary, 36},      {QLocale::Italy, 39},
        {QLocale::Romania, 40},       {QLocale::Switzerland, 41},  {QLocale::Austria, 43},
        {QLocale::UnitedKingdom, 44}, {QLocale::Denmark, 45},      {QLocale::Sweden, 46},
        {QLocale::Norway, 47},        {QLocale::Poland, 48},       {QLocale::Germany, 49},
        {QLocale::Mexico, 52},        {QLocale::Argentina, 54},    {QLocale::Brazil, 55},
        {QLocale::Chile, 56},         {QLocale::Malaysia, 60},     {QLocale::Australia, 61},
        {QLocale::Indonesia, 62},     {QLocale::Philippines, 63},  {QLocale::NewZealand, 64},
        {QLocale::Singapore, 65},     {QLocale::Thailand, 66},     {QLocale::Japan, 81},
        {QLocale::SouthKorea, 82},    {QLocale::China, 86},        {QLocale::Turkey, 90},
        {QLocale::India, 91},         {QLocale::Portugal, 351},    {QLocale::Ireland, 353},
        {QLocale::Finland, 358},      {QLocale::CzechRepublic, 420}, {QLocale::HongKong, 852},
        {QLocale::Israel, 972},       {QLocale::UnitedArabEmirates, 971},
    };
    const auto it = codes.find(QLocale::system().territory());
    return it == codes.end() ? 0 : it->second;
}
