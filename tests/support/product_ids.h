// Sets of product ids as tables write them: "870-87F 891" in hexadecimal.
#pragma once

#include <bitset>
#include <sstream>
#include <string>

namespace qvx::tests {

constexpr int allProductIds = 0x1000;

class Ids {
 public:
  Ids(const char* text) {
    std::istringstream words(text);
    for (std::string word; words >> word;) {
      const std::size_t dash = word.find('-');
      const int last = std::stoi(word.substr(dash + 1), nullptr, 16);
      for (int id = std::stoi(word, nullptr, 16); id <= last; ++id) add(id);
    }
  }

  bool contains(int id) const {
    return id >= 0 && id < allProductIds && members_[static_cast<std::size_t>(id)];
  }
  // The first or the last id of a range, or the one beside it.
  bool hasEdgeAt(int id) const {
    return contains(id) != contains(id - 1) || contains(id) != contains(id + 1);
  }

 private:
  void add(int id) { members_.set(static_cast<std::size_t>(id)); }

  std::bitset<allProductIds> members_;
};

// Two kinds of lights in the older families; an id may be of neither.
inline const Ids vk4xxx_2 =
    "870 871 873 875 876 878 87A-87C 880 881 883 885 886 888 88B 88D 88F "
    "890 891 893 895 896 898 89B 89D 89F 910 911 913 915-918 91B 91D 91F";
inline const Ids vk4xxx_3 =
    "872 874 879 87D-87F 882 884 889 88A 88C 88E 892 894 897 899 89A 89C 89E "
    "912 914 919 91A 91C 91E";
inline const Ids vk7xxx_2 = "960-967 970-977 980 990-994";
inline const Ids vk7xxx_3 = "968-96D 978-97F 995-998";
inline const Ids vk7xxxR4_2 = "920 921 923-925", vk7xxxR4_3 = "922 926-928";

}  // namespace qvx::tests
