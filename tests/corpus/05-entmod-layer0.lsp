(defun c:work (/ ss n ed)
  (if (setq ss (ssget "_X" '((8 . "0"))))
    (progn
      (setq n -1)
      (while (setq ed (ssname ss (setq n (1+ n))))
        (setq ed (entget ed))
        (if (assoc 62 ed) (setq ed (subst '(62 . 256) (assoc 62 ed) ed)) (setq ed (append ed '((62 . 256)))))
        (entmod ed) (entupd (cdr (assoc -1 ed))))))
  (princ))
