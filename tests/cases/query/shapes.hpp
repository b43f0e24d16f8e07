// TODO:  draw them
/** All that can be drawn. */
class Shape : public Named, private Counted {
public:
    virtual int area(int scale, char* name) const;
    static Shape* first;
protected:
    int sides[4];
private:
    class Corner { int x; };
};
namespace forms {
    int count();
}
int Round::area() { return 0; }
struct Odd { ] };
