"""The page of picturehost gallery in a real browser: that it renders, on a phone and on a desktop."""

import struct

from browser import Browser
from harness import PicturehostTest, main

# What the page can be asked; each gives a list of what is wrong.
BROKEN_PICTURES = """
Promise.all([...document.images].map(image => image.decode().then(
  () => image.naturalWidth > 0 ? null : image.alt, () => image.alt)))
  .then(all => all.filter(alt => alt !== null))"""
# Elements that stick out to the right, but for what a plot cuts off.
TOO_WIDE = """
[...document.body.querySelectorAll('*')].filter(element => !element.closest('svg')
  && element.getBoundingClientRect().right > document.documentElement.clientWidth + 0.5)
  .map(element => element.outerHTML.slice(0, 80))"""
# Plots too small for their letters.
UNREADABLE = """
[...document.querySelectorAll('svg.plot text')].filter(text =>
  text.getBoundingClientRect().height < 10).map(text => text.textContent)"""
UNSMOOTHED = """
[...document.querySelectorAll('img.magnified')].filter(image =>
  getComputedStyle(image).imageRendering !== 'pixelated').map(image => image.alt)"""


class GalleryInBrowser(PicturehostTest):
    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()
        cls.addClassCleanup(cls.browser.close)

    def setUp(self):
        super().setUp()
        self.assert_done(self.picturehost("sample", "stamp", "-o", "a long name of a picture" * 5 + ".png"))
        self.gallery = self.picturehost(
            "gallery", *[path.name for path in self.folder.glob("*.png")], "-o", "out"
        )
        self.assert_done(self.gallery)
        self.url = (self.folder / "out/index.html").as_uri()

    def test_a_browser_notices_what_these_tests_look_for(self):
        (self.folder / "bad.html").write_text(
            "<!DOCTYPE html><title>Bad</title><body><img src='data:image/png;base64,AAAA' alt=broken>"
            "<div style='width: 2000px'>wide</div><img class=magnified alt=smooth src=missing.png>"
            "<svg class=plot viewBox='0 0 1000 9' width=90><text y=9 font-size=9>tiny</text></svg>"
            "<script>console.log('spoke'); throw Error('thrown')</script>"
        )
        self.browser.open((self.folder / "bad.html").as_uri(), 360)
        self.assertEqual(self.browser.evaluate(BROKEN_PICTURES), ["broken", "smooth"])
        self.assertIn("wide", str(self.browser.evaluate(TOO_WIDE)))
        self.assertEqual(self.browser.evaluate(UNREADABLE), ["tiny"])
        self.assertEqual(self.browser.evaluate(UNSMOOTHED), ["smooth"])
        self.assertIn("spoke", str(self.browser.complaints()))
        self.assertIn("thrown", str(self.browser.complaints()))
        self.assertEqual(len(self.browser.requests()), 2)

    def test_renders_at_every_width_in_both_schemes(self):
        grounds = {}
        for scheme in ("light", "dark"):
            for width in (360, 768, 1280):
                with self.subTest(width=width, scheme=scheme):
                    self.browser.open(self.url, width, scheme=scheme)
                    self.assertEqual(self.browser.evaluate("innerWidth"), width)
                    self.assertEqual(self.browser.evaluate("document.title"), "Pictures and plots")
                    self.assertGreater(self.browser.evaluate("document.images.length"), 100)
                    self.assertEqual(self.browser.evaluate(BROKEN_PICTURES), [])
                    self.assertEqual(self.browser.evaluate(TOO_WIDE), [])
                    self.assertLessEqual(
                        self.browser.evaluate("document.documentElement.scrollWidth"), width
                    )
                    self.assertEqual(self.browser.evaluate(UNREADABLE), [])
                    self.assertEqual(self.browser.evaluate(UNSMOOTHED), [])
                    self.assertEqual(self.browser.complaints(), [])
                    self.assertEqual(self.browser.requests(), [self.url])
            grounds[scheme] = self.browser.evaluate("getComputedStyle(document.body).backgroundColor")
        self.assertNotEqual(grounds["light"], grounds["dark"])

    def test_a_screenshot_is_as_long_as_the_page(self):
        self.browser.open(self.url, 360)
        height = self.browser.evaluate("document.documentElement.scrollHeight")
        self.assertGreater(height, 5000)
        self.browser.screenshot(self.folder / "shot.png")
        size = struct.unpack(">II", (self.folder / "shot.png").read_bytes()[16:24])
        self.assertEqual(size, (360, height))


if __name__ == "__main__":
    main()
