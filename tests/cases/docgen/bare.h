No comment here.
