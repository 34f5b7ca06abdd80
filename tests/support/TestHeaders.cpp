// The compiled headers of the tests belong to this otherwise empty source.
