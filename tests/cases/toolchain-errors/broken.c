int main(void) {
    return missing;
}
