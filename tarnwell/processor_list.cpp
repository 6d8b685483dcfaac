#include "tarnwell/processor_list.h"

#include "common/tokenizer.h"

#include <algorithm>
#include <charconv>

namespace tarnwell {
namespace {

// No machine has more; a damaged file must not make us build a list of billions.
constexpr int kHighestProcessor = 65535;

bool readNumber(const std::string& text, int& out) {
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), out);
    return error == std::errc() && end == text.data() + text.size() && out >= 0 && out <= kHighestProcessor;
}

} // namespace

bool parseProcessorList(const std::string& text, std::vector<int>& out) {
    std::vector<int> numbers;
    for (const std::string& item : pwr::Tokenizer(text, ", \n\r\t").get_all_tokens()) {
        const std::size_t dash = item.find('-');
        int low = 0;
        int high = 0;
        if (!readNumber(item.substr(0, dash), low)) {
            return false;
        }
        high = low;
        if (dash != std::string::npos && (!readNumber(item.substr(dash + 1), high) || high < low)) {
            return false;
        }
        for (int number = low; number <= high; ++number) {
            numbers.push_back(number);
        }
    }
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    out = std::move(numbers);
    return true;
}

} // namespace tarnwell
