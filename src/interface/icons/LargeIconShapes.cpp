#include "interface/icons/StandardIconShapes.h"

namespace kestrin {

namespace {

constexpr IconLayer Bell[] = {
    {0xff7a4300, 0, 0, "E 16 25.5 3.5 3.5"},
    {0xff9c5a00, 0, 0, "E 16 4.5 2.5 2.5"},
    {0xfff5a81c, 0xff9c5a00, 2,
     "M 16 5 C 10.5 5 8 9 8 13.5 V 17 C 8 20 4 20.5 4 25 H 28 C 28 20.5 24 20 24 17 V 13.5 "
     "C 24 9 21.5 5 16 5 Z"},
    {0, 0xffffdc8a, 2, "M 11.5 19 V 13.5 C 11.5 11 12.5 9.5 14 8.7"},
};

constexpr IconLayer Cake[] = {
    {0xffff9d1e, 0, 0,
     "M 10 3 Q 12.4 6 10 8 Q 7.6 6 10 3 Z M 16 2 Q 18.4 5 16 7 Q 13.6 5 16 2 Z "
     "M 22 3 Q 24.4 6 22 8 Q 19.6 6 22 3 Z"},
    {0xff8660cc, 0, 0, "R 9 9 2 7 0 R 15 8 2 8 0 R 21 9 2 7 0"},
    {0xffe4699c, 0xff96305f, 2, "R 5 15 22 13 2"},
    {0xfffff3e2, 0xff96305f, 2,
     "M 5 21 V 17 Q 5 15 7 15 H 25 Q 27 15 27 17 V 21 Q 24.3 24.5 21.5 21 Q 18.8 24.5 16 21 "
     "Q 13.3 24.5 10.5 21 Q 7.8 24.5 5 21 Z"},
    {0xff96305f, 0, 0, "R 2 27 28 3 1.5"},
};

constexpr IconLayer Money[] = {
    {0xff55b567, 0xff1f6b34, 2, "R 3 7 26 16 2"},
    {0xffcdeccb, 0, 0, "E 16 15 4.5 4.5 E 7.5 11.5 1.5 1.5 E 7.5 18.5 1.5 1.5"},
    {0xffffcf3f, 0xff9a6a00, 2, "E 23 22.5 6.5 6.5"},
    {0, 0xffb98200, 2, "M 23 19.5 V 25.5"},
};

constexpr IconLayer Disk[] = {
    {0xff5f7399, 0xff2c3a57, 2,
     "M 6 4 H 24.5 L 28 7.5 V 26 Q 28 28 26 28 H 6 Q 4 28 4 26 V 6 "
     "Q 4 4 6 4 Z"},
    {0xffd5dcea, 0, 0, "R 10 5 12 7 0"},
    {0xff2c3a57, 0, 0, "R 17 6 3 5 0"},
    {0xfffbfcfe, 0, 0, "R 8 16 16 11 0"},
    {0, 0xffa4b3cf, 2, "M 11 20 H 21 M 11 24 H 18"},
};

constexpr IconLayer Phone[] = {
    {0xff17a374, 0xff08503a, 2,
     "M 8.5 4 L 12.6 10.4 Q 13.4 11.8 12.2 13 L 10.6 14.6 Q 13 19 17.4 21.4 L 19 19.8 "
     "Q 20.2 18.6 21.6 19.4 L 28 23.5 Q 27.8 25.6 26 27 Q 23.6 28.6 20.5 28 Q 5 24.4 4 11.5 "
     "Q 3.6 8.2 5.2 6 Q 6.6 4.2 8.5 4 Z"},
    {0, 0xff0c7a56, 2, "M 17.5 9 Q 22.5 9.5 23 14.5 M 18 4 Q 27.5 4.5 28 14"},
};

constexpr IconLayer Clock[] = {
    {0xfff8f6ff, 0xff6a48bd, 3, "E 16 16 12.5 12.5"},
    {0, 0xff9f8ad6, 2, "M 16 6 V 8 M 16 24 V 26 M 6 16 H 8 M 24 16 H 26"},
    {0, 0xff2f2157, 2.4, "M 16 9.5 V 16 L 20.5 18.6"},
};

constexpr IconLayer Heart[] = {
    {0xffe63950, 0xff93122a, 2,
     "M 16 28 C 7 21.5 3 16.5 3 11.5 C 3 7.5 6 5 9.5 5 C 12.6 5 15 6.8 16 9.5 "
     "C 17 6.8 19.4 5 22.5 5 C 26 5 29 7.5 29 11.5 C 29 16.5 25 21.5 16 28 Z"},
    {0, 0xffff9fae, 2, "M 6.8 12 C 6.8 10 8 8.7 9.8 8.6"},
};

constexpr IconLayer Envelope[] = {
    {0xfff3f8fe, 0xff3a6fae, 2, "R 3 7 26 19 2"},
    {0, 0xff9fc3e8, 2, "M 5 24 L 12.5 16.5 M 27 24 L 19.5 16.5"},
    {0xffd6e7f8, 0xff3a6fae, 2, "M 3.6 7.6 L 14.6 17.4 Q 16 18.6 17.4 17.4 L 28.4 7.6 Z"},
};

constexpr IconLayer Star[] = {
    {0xffffd23c, 0xffa87100, 2,
     "M 16 3.5 L 19.6 12 L 28.8 12.8 L 21.8 18.9 L 23.9 27.9 L 16 23.1 L 8.1 27.9 L 10.2 18.9 "
     "L 3.2 12.8 L 12.4 12 Z"},
    {0, 0xfffff2b8, 2, "M 14 15 L 16 10"},
};

constexpr IconLayer House[] = {
    {0xff8a5a44, 0xff4f2c1c, 2, "R 21 5 4 9 0"},
    {0xfff2dfb9, 0xff7a5a2c, 2, "M 6 14 H 26 V 28 H 6 Z"},
    {0xffcf5138, 0xff7c2313, 2, "M 16 4 L 30 16.5 H 2 Z"},
    {0xff7a4a2b, 0, 0, "R 13 20 6 8 0"},
};

constexpr IconLayer Plane[] = {
    {0xff3f8cf0, 0xff143f86, 2,
     "M 16 1 C 17.6 1 18.6 3 18.6 5.5 V 11.5 L 30 18.5 V 21.8 L 18.6 18.6 L 18 25 L 21.6 27.6 "
     "V 30 L 16 28.6 L 10.4 30 V 27.6 L 14 25 L 13.4 18.6 L 2 21.8 V 18.5 L 13.4 11.5 V 5.5 "
     "C 13.4 3 14.4 1 16 1 Z T 45"},
};

}  // namespace

const std::array<IconDrawing, NumberOfStandardIcons> LargeIconDrawings = {
    Bell, Cake, Money, Disk, Phone, Clock, Heart, Envelope, Star, House, Plane};

}  // namespace kestrin
