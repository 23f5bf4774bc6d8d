#include "interface/icons/StandardIconShapes.h"

namespace kestrin {

namespace {

constexpr IconLayer Bell[] = {
    {0xff7a4300, 0, 0, "R 6 13 4 2 1 R 7 1 2 2 0"},
    {0xfff5a81c, 0xff9c5a00, 1,
     "M 8 2.5 C 5.5 2.5 4.5 4.5 4.5 6.5 V 8.5 C 4.5 10.5 2.5 10.5 2.5 12.5 H 13.5 "
     "C 13.5 10.5 11.5 10.5 11.5 8.5 V 6.5 C 11.5 4.5 10.5 2.5 8 2.5 Z"},
    {0, 0xffffdc8a, 1, "M 6.5 9 V 6"},
};

constexpr IconLayer Cake[] = {
    {0xffff9d1e, 0, 0, "R 4 1 2 2 1 R 7 1 2 2 1 R 10 1 2 2 1"},
    {0xff8660cc, 0, 0, "R 4 3 2 4 0 R 7 3 2 4 0 R 10 3 2 4 0"},
    {0xffe4699c, 0xff96305f, 1, "R 2.5 6.5 11 7 1"},
    {0xfffff3e2, 0, 0, "M 3 7 H 13 V 9 L 11.5 10.5 L 10 9 L 8 10.5 L 6 9 L 4.5 10.5 L 3 9 Z"},
    {0xff96305f, 0, 0, "R 1 13 14 2 1"},
};

constexpr IconLayer Money[] = {
    {0xff55b567, 0xff1f6b34, 1, "R 1.5 3.5 13 8 1"},
    {0xffcdeccb, 0, 0, "E 7 7.5 2 2 R 3 5 1 1 0 R 3 9 1 1 0"},
    {0xffffcf3f, 0xff9a6a00, 1, "E 11.5 11.5 3 3"},
};

constexpr IconLayer Disk[] = {
    {0xff5f7399, 0xff2c3a57, 1, "M 2.5 2.5 H 12 L 13.5 4 V 13.5 H 2.5 Z"},
    {0xffd5dcea, 0, 0, "R 5 3 6 3 0"},
    {0xff2c3a57, 0, 0, "R 8 3 2 2 0"},
    {0xfffbfcfe, 0, 0, "R 4 8 8 5 0"},
    {0, 0xffa4b3cf, 1, "M 5 10.5 H 11"},
};

constexpr IconLayer Phone[] = {
    {0xff17a374, 0xff08503a, 1,
     "M 4.3 1.8 L 6.4 5 Q 6.8 5.8 6.2 6.4 L 5.4 7.2 Q 6.6 9.4 8.8 10.6 L 9.6 9.8 "
     "Q 10.2 9.2 11 9.6 L 14.2 11.7 Q 14 12.9 13 13.6 Q 11.8 14.4 10.2 14 Q 2.4 12.2 2 5.8 "
     "Q 1.8 4 2.6 2.9 Q 3.3 1.9 4.3 1.8 Z"},
    {0, 0xff0c7a56, 1, "M 9 2.5 Q 13.3 2.7 13.5 7"},
};

constexpr IconLayer Clock[] = {
    {0xfff8f6ff, 0xff6a48bd, 2, "E 8 8 6 6"},
    {0, 0xff2f2157, 1, "M 7.5 4 V 8.5 H 11"},
};

constexpr IconLayer Heart[] = {
    {0xffe63950, 0xff93122a, 1,
     "M 8 13.8 C 3.5 10.5 1.5 8.2 1.5 5.6 C 1.5 3.7 3 2.5 4.7 2.5 C 6.2 2.5 7.5 3.4 8 4.7 "
     "C 8.5 3.4 9.8 2.5 11.3 2.5 C 13 2.5 14.5 3.7 14.5 5.6 C 14.5 8.2 12.5 10.5 8 13.8 Z"},
    {0, 0xffff9fae, 1, "M 3.5 6 Q 3.5 4.5 5 4.5"},
};

constexpr IconLayer Envelope[] = {
    {0xfff3f8fe, 0xff3a6fae, 1, "R 1.5 3.5 13 9 1"},
    {0xffd6e7f8, 0xff3a6fae, 1, "M 2 3.5 L 8 8.7 L 14 3.5 Z"},
};

constexpr IconLayer Star[] = {
    {0xffffd23c, 0xffa87100, 1,
     "M 8 1.6 L 9.9 6 L 14.6 6.4 L 11 9.5 L 12.1 14.2 L 8 11.7 L 3.9 14.2 L 5 9.5 L 1.4 6.4 "
     "L 6.1 6 Z"},
};

constexpr IconLayer House[] = {
    {0xff4f2c1c, 0, 0, "R 11 2 2 4 0"},
    {0xfff2dfb9, 0xff7a5a2c, 1, "M 3.5 7.5 H 12.5 V 13.5 H 3.5 Z"},
    {0xffcf5138, 0xff7c2313, 1, "M 8 1.7 L 15 8.5 H 1 Z"},
    {0xff7a4a2b, 0, 0, "R 7 10 2 4 0"},
};

constexpr IconLayer Plane[] = {
    {0xff3f8cf0, 0xff143f86, 1,
     "M 8 0.2 C 9 0.2 9.5 1.5 9.5 3 V 5.7 L 15 9 V 11 L 9.5 9.5 L 9.3 12.3 L 11 13.7 V 15.2 "
     "L 8 14.4 L 5 15.2 V 13.7 L 6.7 12.3 L 6.5 9.5 L 1 11 V 9 L 6.5 5.7 V 3 "
     "C 6.5 1.5 7 0.2 8 0.2 Z T 45"},
};

}  // namespace

const std::array<IconDrawing, NumberOfStandardIcons> MiniIconDrawings = {
    Bell, Cake, Money, Disk, Phone, Clock, Heart, Envelope, Star, House, Plane};

}  // namespace kestrin
