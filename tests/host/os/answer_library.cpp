// The library that the tests of helper libraries load.

extern "C" int answerTwice(int number)
{
    return 2 * number;
}
