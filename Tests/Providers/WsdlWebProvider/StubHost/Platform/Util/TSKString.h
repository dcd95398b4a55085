#pragma once

class TSKString {
  public:
    TSKString();
    TSKString(const char* text);
    TSKString(const TSKString& other);
    ~TSKString();
    TSKString& operator=(const TSKString& other);

    const char* data() const;
    unsigned long length() const;
    void reserve(unsigned long length);
    TSKString& append(const char* text, unsigned long length);
    TSKString& operator+=(const TSKString& text);
    TSKString& operator+=(const char* text);

    bool equals(const char* other) const;
    bool equalsIgnoreCase(const char* other) const;
    bool isEqualCaseInsensitive(const char* other) const;
    bool endsWith(const char* suffix, int ignoreCase) const;
    bool contains(const char* part, int ignoreCase) const;
    long find(char character) const;
    long find(const char* part, int start) const;
    long reverseFind(char character) const;

    TSKString substr(unsigned long position, unsigned long length) const;
    TSKString left(unsigned long length) const;
    TSKString right(unsigned long length) const;
    TSKString& toLower();
    TSKString& trim(const char* characters);
    TSKString& ltoa(long value, int radix);
    TSKString& itoa(long value, int radix);
    long atol() const;
};

TSKString operator+(const TSKString& left, const TSKString& right);
TSKString operator+(const TSKString& left, const char* right);
TSKString operator+(const char* left, const TSKString& right);
